# fish completion for meterwick-widgets
set -l commands kinds placeholder snapshot timeline choices lookup place list edit remove reload bar doctor render describe gallery demo
set -l kinds focus accounts accounts-limit sparkline dashboard
set -l families systemSmall systemMedium systemLarge systemExtraLarge

complete -c meterwick-widgets -f
complete -c meterwick-widgets -l container -r -a '(__fish_complete_directories)' -d 'Shared container directory'
complete -c meterwick-widgets -l now -r -d 'The current time, ISO 8601'
complete -c meterwick-widgets -s h -l help -d 'Show help'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -l version -d 'Show the version'

complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a kinds -d 'The widgets in gallery order'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a placeholder -d 'The placeholder entry'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a snapshot -d 'The snapshot entry'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a timeline -d 'The timeline'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a choices -d 'Tool or provider choices'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a lookup -d 'Choices for stored identifiers'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a place -d 'Place a widget'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a list -d 'The placed widgets'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a edit -d 'Change a placed widget'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a remove -d 'Remove a placed widget'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a reload -d 'Ask the host to rebuild timelines'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a bar -d 'A status-bar line'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a doctor -d 'Why widgets show nothing'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a render -d 'Draw an entry'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a describe -d 'The laid-out view'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a gallery -d 'Every widget as PNG'
complete -c meterwick-widgets -n "not __fish_seen_subcommand_from $commands" -a demo -d 'Sample payload and gallery'

complete -c meterwick-widgets -n "__fish_seen_subcommand_from placeholder snapshot timeline render describe place reload" -a "$kinds"
complete -c meterwick-widgets -n "__fish_seen_subcommand_from timeline render describe place edit" -l family -r -a "$families"
complete -c meterwick-widgets -n "__fish_seen_subcommand_from snapshot timeline render describe place edit bar" -l set -r -d 'NAME=VALUE'
complete -c meterwick-widgets -n "__fish_seen_subcommand_from render describe" -l entry -r
complete -c meterwick-widgets -n "__fish_seen_subcommand_from render" -l scale -r
complete -c meterwick-widgets -n "__fish_seen_subcommand_from render" -l appearance -r -a 'light dark'
complete -c meterwick-widgets -n "__fish_seen_subcommand_from render gallery demo" -l output -r -F
complete -c meterwick-widgets -n "__fish_seen_subcommand_from place edit" -l at -r -d 'X,Y'
complete -c meterwick-widgets -n "__fish_seen_subcommand_from choices lookup" -a 'tool provider'
complete -c meterwick-widgets -n "__fish_seen_subcommand_from bar" -l format -r -a 'waybar plain'
complete -c meterwick-widgets -n "__fish_seen_subcommand_from bar" -l follow -d 'Keep running'
complete -c meterwick-widgets -n "__fish_seen_subcommand_from doctor" -l json -d 'The report as JSON'
