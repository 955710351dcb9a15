#include "app/host/dialogs.hpp"

#include <algorithm>

#include "bundle/widget_view.hpp"
#include "host/widget_mask.hpp"
#include "platform/clock.hpp"
#include "render/cairo/painter.hpp"
#include "render/cairo/text.hpp"

namespace mw::host {
namespace {

constexpr double kPreviewWidth = 200;
constexpr double kPreviewHeight = 110;

// How the gallery names a family.
std::string familyTitle(WidgetFamily family) {
    switch (family) {
        case WidgetFamily::systemSmall:
            return "Small";
        case WidgetFamily::systemMedium:
            return "Medium";
        case WidgetFamily::systemLarge:
            return "Large";
        case WidgetFamily::systemExtraLarge:
            return "Extra Large";
    }
    return std::string(rawValue(family));
}

template <class E>
ParameterChoices optionChoices() {
    ParameterChoices out;
    for (const auto& c : OptionTable<E>::cases) out.emplace_back(std::string(c.raw), std::string(c.display));
    return out;
}

template <class Choice>
ParameterChoices entityChoices(std::vector<Choice> listed, const std::optional<std::string>& stored,
                               Choice (*forIdentifier)(std::string_view, const std::vector<Choice>&)) {
    if (stored && std::none_of(listed.begin(), listed.end(), [&](const auto& c) { return c.id == *stored; }))
        listed.push_back(forIdentifier(*stored, listed));
    ParameterChoices out;
    for (const auto& choice : listed) out.emplace_back(choice.id, choice.label);
    return out;
}

}  // namespace

ParameterChoices choicesFor(const IntentParameter& parameter, const std::optional<std::string>& stored,
                            const std::optional<std::filesystem::path>& container) {
    switch (parameter.type) {
        case IntentParameterType::toolChoice:
            return entityChoices(WidgetToolChoiceQuery::suggestedEntities(container), stored, &toolChoiceForIdentifier);
        case IntentParameterType::providerChoice:
            return entityChoices(WidgetProviderChoiceQuery::suggestedEntities(container), stored,
                                 &providerChoiceForIdentifier);
        case IntentParameterType::limit:
            return optionChoices<WidgetLimitChoice>();
        case IntentParameterType::percent:
            return optionChoices<WidgetPercentChoice>();
        case IntentParameterType::order:
            return optionChoices<WidgetOrderChoice>();
        case IntentParameterType::detailStyle:
            return optionChoices<WidgetDetailStyle>();
    }
    return {};
}

std::string selectedValue(const IntentParameter& parameter, const IntentParameters& stored) {
    if (const auto it = stored.find(std::string(parameter.name)); it != stored.end()) return it->second;
    if (parameter.defaultValue) return std::string(*parameter.defaultValue);
    return std::string(parameter.unsetMeans);
}

EditWidgetDialog::EditWidgetDialog(const IntentDescription& intent, const IntentParameters& stored,
                                   const std::optional<std::filesystem::path>& container, Apply apply)
    : apply_(std::move(apply)) {
    set_title(std::string(intent.title));
    set_position(Gtk::WIN_POS_MOUSE);
    set_resizable(false);
    grid_.set_row_spacing(8);
    grid_.set_column_spacing(12);
    grid_.set_border_width(16);

    int row = 0;
    for (const auto& parameter : intent.parameters) {
        const auto it = stored.find(std::string(parameter.name));
        const auto storedValue = it == stored.end() ? std::nullopt : std::optional(it->second);

        auto label = std::make_unique<Gtk::Label>(std::string(parameter.title));
        label->set_xalign(0);
        auto list = std::make_unique<Gtk::ComboBoxText>();
        for (const auto& [value, text] : choicesFor(parameter, storedValue, container)) list->append(value, text);
        list->set_active_id(selectedValue(parameter, stored));
        list->set_hexpand(true);
        list->signal_changed().connect([this, name = std::string(parameter.name), combo = list.get()] {
            const auto value = combo->get_active_id();
            if (!value.empty()) apply_(name, value);
        });
        grid_.attach(*label, 0, row);
        grid_.attach(*list, 1, row);
        labels_.push_back(std::move(label));
        lists_.push_back(std::move(list));
        ++row;
    }
    get_content_area()->pack_start(grid_, Gtk::PACK_EXPAND_WIDGET);
    add_button("Done", Gtk::RESPONSE_CLOSE);
    signal_response().connect([this](int) { hide(); });
    show_all_children();
}

AddWidgetDialog::AddWidgetDialog(std::function<render::Appearance()> appearance, Add add)
    : appearance_(std::move(appearance)), add_(std::move(add)) {
    set_title("Add Widget");
    set_position(Gtk::WIN_POS_MOUSE);
    set_default_size(640, 620);
    rowsBox_.set_border_width(16);

    Pango::AttrList bold;
    auto weight = Pango::Attribute::create_attr_weight(Pango::WEIGHT_BOLD);
    bold.insert(weight);

    for (const auto& widget : widgetDeclarations()) {
        auto row = std::make_unique<Row>();
        Row& r = *row;
        r.widget = &widget;

        r.preview.set_size_request(static_cast<int>(kPreviewWidth), static_cast<int>(kPreviewHeight));
        r.preview.signal_draw().connect([this, &r](const Cairo::RefPtr<Cairo::Context>& cr) {
            const auto& size = r.list.size;
            if (size.width <= 0 || size.height <= 0) return true;
            const double scale = std::min(kPreviewWidth / size.width, kPreviewHeight / size.height);
            cr->translate((kPreviewWidth - size.width * scale) / 2, (kPreviewHeight - size.height * scale) / 2);
            cr->scale(scale, scale);
            render::paint(cr->cobj(), r.list, appearance_());
            return true;
        });

        r.name.set_text(std::string(widget.displayName));  // plain text, never markup
        r.name.set_attributes(bold);
        r.name.set_xalign(0);
        r.description.set_text(std::string(widget.description));
        r.description.set_line_wrap(true);
        r.description.set_max_width_chars(44);
        r.description.set_xalign(0);

        for (const auto family : widget.families) {
            r.family.append(std::string(rawValue(family)), familyTitle(family));
        }
        r.family.set_active(0);
        r.family.signal_changed().connect([this, &r] { updatePreview(r); });
        r.add.signal_clicked().connect([this, &r] {
            if (const auto family = widgetFamilyFromRaw(r.family.get_active_id().raw())) add_(*r.widget, *family);
        });

        r.controls.pack_start(r.family, Gtk::PACK_SHRINK);
        r.controls.pack_start(r.add, Gtk::PACK_SHRINK);
        r.texts.pack_start(r.name, Gtk::PACK_SHRINK);
        r.texts.pack_start(r.description, Gtk::PACK_SHRINK);
        r.texts.pack_start(r.controls, Gtk::PACK_SHRINK);
        r.box.pack_start(r.preview, Gtk::PACK_SHRINK);
        r.box.pack_start(r.texts, Gtk::PACK_EXPAND_WIDGET);
        rowsBox_.pack_start(r.box, Gtk::PACK_SHRINK);
        updatePreview(r);
        rows_.push_back(std::move(row));
    }
    scroller_.set_policy(Gtk::POLICY_NEVER, Gtk::POLICY_AUTOMATIC);
    scroller_.add(rowsBox_);
    get_content_area()->pack_start(scroller_, Gtk::PACK_EXPAND_WIDGET);
    add_button("Done", Gtk::RESPONSE_CLOSE);
    signal_response().connect([this](int) { hide(); });
    show_all_children();
}

// The placeholder entry, as the gallery shows a widget before it has data.
void AddWidgetDialog::updatePreview(Row& row) {
    const auto family = widgetFamilyFromRaw(row.family.get_active_id().raw()).value_or(row.widget->families.front());
    row.list =
        maskedToWidgetShape(layoutWidget(row.widget->placeholder(systemNow()), family, render::systemTextMeasurer()));
    row.preview.queue_draw();
}

void AddWidgetDialog::appearanceChanged() {
    for (auto& row : rows_) row->preview.queue_draw();
}

}  // namespace mw::host
