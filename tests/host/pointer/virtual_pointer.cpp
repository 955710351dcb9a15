// mw-virtual-pointer WIDTH HEIGHT STEP…: drives the pointer of a wlroots
// compositor through its virtual pointer protocol, as a person's mouse
// would. Each STEP is "move X Y", "press", "release", "right-press",
// "right-release" or "wait MS"; positions are in the output's points,
// WIDTH × HEIGHT being its size.

#include <linux/input-event-codes.h>
#include <wayland-client.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "wlr-virtual-pointer-unstable-v1-client-protocol.h"

namespace {

struct Globals {
    wl_seat* seat = nullptr;
    zwlr_virtual_pointer_manager_v1* manager = nullptr;
};

void announce(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t) {
    auto* globals = static_cast<Globals*>(data);
    if (std::strcmp(interface, wl_seat_interface.name) == 0 && globals->seat == nullptr)
        globals->seat = static_cast<wl_seat*>(wl_registry_bind(registry, name, &wl_seat_interface, 1));
    else if (std::strcmp(interface, zwlr_virtual_pointer_manager_v1_interface.name) == 0)
        globals->manager = static_cast<zwlr_virtual_pointer_manager_v1*>(
            wl_registry_bind(registry, name, &zwlr_virtual_pointer_manager_v1_interface, 1));
}

void withdraw(void*, wl_registry*, uint32_t) {}

constexpr wl_registry_listener kRegistryListener{announce, withdraw};

uint32_t milliseconds() {
    using namespace std::chrono;
    return static_cast<uint32_t>(duration_cast<std::chrono::milliseconds>(steady_clock::now().time_since_epoch()).count());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: mw-virtual-pointer WIDTH HEIGHT [move X Y | [right-]press | [right-]release | wait MS]…\n");
        return 2;
    }
    wl_display* display = wl_display_connect(nullptr);
    if (display == nullptr) {
        std::fprintf(stderr, "mw-virtual-pointer: cannot connect to the Wayland display\n");
        return 1;
    }
    Globals globals;
    wl_registry* registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &kRegistryListener, &globals);
    wl_display_roundtrip(display);
    if (globals.manager == nullptr) {
        std::fprintf(stderr, "mw-virtual-pointer: the compositor offers no zwlr_virtual_pointer_manager_v1\n");
        return 1;
    }
    auto* pointer = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(globals.manager, globals.seat);
    const auto width = static_cast<uint32_t>(std::atoi(argv[1]));
    const auto height = static_cast<uint32_t>(std::atoi(argv[2]));
    for (int i = 3; i < argc; ++i) {
        const std::string step = argv[i];
        if (step == "move" && i + 2 < argc) {
            const auto x = static_cast<uint32_t>(std::atoi(argv[i + 1]));
            const auto y = static_cast<uint32_t>(std::atoi(argv[i + 2]));
            zwlr_virtual_pointer_v1_motion_absolute(pointer, milliseconds(), x, y, width, height);
            i += 2;
        } else if (step == "press" || step == "release" || step == "right-press" || step == "right-release") {
            const bool right = step.starts_with("right-");
            zwlr_virtual_pointer_v1_button(pointer, milliseconds(), right ? BTN_RIGHT : BTN_LEFT,
                                           step.ends_with("press") ? WL_POINTER_BUTTON_STATE_PRESSED
                                                                   : WL_POINTER_BUTTON_STATE_RELEASED);
        } else if (step == "wait" && i + 1 < argc) {
            std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(argv[++i])));
            continue;
        } else {
            std::fprintf(stderr, "mw-virtual-pointer: unknown step \"%s\"\n", argv[i]);
            return 2;
        }
        zwlr_virtual_pointer_v1_frame(pointer);
        wl_display_roundtrip(display);
    }
    zwlr_virtual_pointer_v1_destroy(pointer);
    wl_display_roundtrip(display);
    wl_display_disconnect(display);
    return 0;
}
