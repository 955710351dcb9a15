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

Dialog::Dialog() : dialog_(gtk_dialog_new()), content_(gtk_dialog_get_content_area(GTK_DIALOG(dialog_))) {
    gtk_window_set_position(GTK_WINDOW(dialog_), GTK_WIN_POS_MOUSE);
    gtk_dialog_add_button(GTK_DIALOG(dialog_), "Done", GTK_RESPONSE_CLOSE);
    // Done, Escape and the close button hide it; the owner decides when it goes.
    response_ =
        connect<void(GtkDialog*, gint)>(dialog_, "response", [this](GtkDialog*, gint) { gtk_widget_hide(dialog_); });
    delete_ = connect<gboolean(GtkWidget*, GdkEvent*)>(dialog_, "delete-event", [this](GtkWidget*, GdkEvent*) {
        gtk_widget_hide(dialog_);
        return TRUE;
    });
}

Dialog::~Dialog() {
    response_.reset();
    delete_.reset();
    gtk_widget_destroy(dialog_);
}

void Dialog::present() {
    gtk_window_present(GTK_WINDOW(dialog_));
}

EditWidgetDialog::EditWidgetDialog(const IntentDescription& intent, const IntentParameters& stored,
                                   const std::optional<std::filesystem::path>& container, Apply apply)
    : apply_(std::move(apply)) {
    gtk_window_set_title(GTK_WINDOW(dialog_), std::string(intent.title).c_str());
    gtk_window_set_resizable(GTK_WINDOW(dialog_), FALSE);
    GtkWidget* grid = gtk_grid_new();
    gtk_grid_set_row_spacing(GTK_GRID(grid), 8);
    gtk_grid_set_column_spacing(GTK_GRID(grid), 12);
    gtk_container_set_border_width(GTK_CONTAINER(grid), 16);

    int row = 0;
    for (const auto& parameter : intent.parameters) {
        const auto it = stored.find(std::string(parameter.name));
        const auto storedValue = it == stored.end() ? std::nullopt : std::optional(it->second);

        GtkWidget* label = gtk_label_new(std::string(parameter.title).c_str());
        gtk_label_set_xalign(GTK_LABEL(label), 0);
        GtkWidget* list = gtk_combo_box_text_new();
        for (const auto& [value, text] : choicesFor(parameter, storedValue, container))
            gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(list), value.c_str(), text.c_str());
        gtk_combo_box_set_active_id(GTK_COMBO_BOX(list), selectedValue(parameter, stored).c_str());
        gtk_widget_set_hexpand(list, TRUE);
        changed_.push_back(connect<void(GtkComboBox*)>(
            list, "changed", [this, name = std::string(parameter.name)](GtkComboBox* combo) {
                if (const char* value = gtk_combo_box_get_active_id(combo); value != nullptr && *value != '\0')
                    apply_(name, value);
            }));
        gtk_grid_attach(GTK_GRID(grid), label, 0, row, 1, 1);
        gtk_grid_attach(GTK_GRID(grid), list, 1, row, 1, 1);
        ++row;
    }
    gtk_box_pack_start(GTK_BOX(content_), grid, TRUE, TRUE, 0);
    gtk_widget_show_all(content_);
}

AddWidgetDialog::AddWidgetDialog(std::function<render::Appearance()> appearance, Add add)
    : appearance_(std::move(appearance)), add_(std::move(add)) {
    gtk_window_set_title(GTK_WINDOW(dialog_), "Add Widget");
    gtk_window_set_default_size(GTK_WINDOW(dialog_), 640, 620);
    GtkWidget* rowsBox = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
    gtk_container_set_border_width(GTK_CONTAINER(rowsBox), 16);

    PangoAttrList* bold = pango_attr_list_new();
    pango_attr_list_insert(bold, pango_attr_weight_new(PANGO_WEIGHT_BOLD));

    for (const auto& widget : widgetDeclarations()) {
        auto row = std::make_unique<Row>();
        Row& r = *row;
        r.widget = &widget;

        r.preview = gtk_drawing_area_new();
        gtk_widget_set_size_request(r.preview, static_cast<int>(kPreviewWidth), static_cast<int>(kPreviewHeight));
        r.draw = connect<gboolean(GtkWidget*, cairo_t*)>(r.preview, "draw", [this, &r](GtkWidget*, cairo_t* cr) {
            const auto& size = r.list.size;
            if (size.width <= 0 || size.height <= 0) return TRUE;
            const double scale = std::min(kPreviewWidth / size.width, kPreviewHeight / size.height);
            cairo_translate(cr, (kPreviewWidth - size.width * scale) / 2, (kPreviewHeight - size.height * scale) / 2);
            cairo_scale(cr, scale, scale);
            render::paint(cr, r.list, appearance_());
            return TRUE;
        });

        GtkWidget* name = gtk_label_new(std::string(widget.displayName).c_str());  // plain text, never markup
        gtk_label_set_attributes(GTK_LABEL(name), bold);
        gtk_label_set_xalign(GTK_LABEL(name), 0);
        GtkWidget* description = gtk_label_new(std::string(widget.description).c_str());
        gtk_label_set_line_wrap(GTK_LABEL(description), TRUE);
        gtk_label_set_max_width_chars(GTK_LABEL(description), 44);
        gtk_label_set_xalign(GTK_LABEL(description), 0);

        r.family = gtk_combo_box_text_new();
        for (const auto family : widget.families)
            gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(r.family), std::string(rawValue(family)).c_str(),
                                      familyTitle(family).c_str());
        gtk_combo_box_set_active(GTK_COMBO_BOX(r.family), 0);
        r.familyChanged =
            connect<void(GtkComboBox*)>(r.family, "changed", [this, &r](GtkComboBox*) { updatePreview(r); });
        GtkWidget* addButton = gtk_button_new_with_label("Add");
        r.clicked = connect<void(GtkButton*)>(addButton, "clicked", [this, &r](GtkButton*) {
            const char* id = gtk_combo_box_get_active_id(GTK_COMBO_BOX(r.family));
            if (const auto family = widgetFamilyFromRaw(id != nullptr ? id : "")) add_(*r.widget, *family);
        });

        GtkWidget* controls = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8);
        gtk_box_pack_start(GTK_BOX(controls), r.family, FALSE, FALSE, 0);
        gtk_box_pack_start(GTK_BOX(controls), addButton, FALSE, FALSE, 0);
        GtkWidget* texts = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
        gtk_box_pack_start(GTK_BOX(texts), name, FALSE, FALSE, 0);
        gtk_box_pack_start(GTK_BOX(texts), description, FALSE, FALSE, 0);
        gtk_box_pack_start(GTK_BOX(texts), controls, FALSE, FALSE, 0);
        GtkWidget* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 16);
        gtk_box_pack_start(GTK_BOX(box), r.preview, FALSE, FALSE, 0);
        gtk_box_pack_start(GTK_BOX(box), texts, TRUE, TRUE, 0);
        gtk_box_pack_start(GTK_BOX(rowsBox), box, FALSE, FALSE, 0);
        updatePreview(r);
        rows_.push_back(std::move(row));
    }
    pango_attr_list_unref(bold);
    GtkWidget* scroller = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_container_add(GTK_CONTAINER(scroller), rowsBox);
    gtk_box_pack_start(GTK_BOX(content_), scroller, TRUE, TRUE, 0);
    gtk_widget_show_all(content_);
}

// The placeholder entry, as the gallery shows a widget before it has data.
void AddWidgetDialog::updatePreview(Row& row) {
    const char* id = gtk_combo_box_get_active_id(GTK_COMBO_BOX(row.family));
    const auto family = widgetFamilyFromRaw(id != nullptr ? id : "").value_or(row.widget->families.front());
    row.list =
        maskedToWidgetShape(layoutWidget(row.widget->placeholder(systemNow()), family, render::systemTextMeasurer()));
    gtk_widget_queue_draw(row.preview);
}

void AddWidgetDialog::appearanceChanged() {
    for (auto& row : rows_) gtk_widget_queue_draw(row->preview);
}

}  // namespace mw::host
