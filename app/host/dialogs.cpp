#include "app/host/dialogs.hpp"

#include <algorithm>

#include "host/placements.hpp"
#include "render/cairo/painter.hpp"

namespace mw::host {
namespace {

// A notice of a removal stays this long.
constexpr guint kUndoMilliseconds = 10000;

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

GtkWidget* leftLabel(const std::string& text) {
    GtkWidget* label = gtk_label_new(text.c_str());  // plain text, never markup
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    return label;
}

GtkWidget* boldLabel(const std::string& text) {
    GtkWidget* label = leftLabel(text);
    PangoAttrList* bold = pango_attr_list_new();
    pango_attr_list_insert(bold, pango_attr_weight_new(PANGO_WEIGHT_BOLD));
    gtk_label_set_attributes(GTK_LABEL(label), bold);
    pango_attr_list_unref(bold);
    return label;
}

GtkWidget* wrappedLabel(const std::string& text, int widthChars) {
    GtkWidget* label = leftLabel(text);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_max_width_chars(GTK_LABEL(label), widthChars);
    gtk_label_set_width_chars(GTK_LABEL(label), widthChars);
    return label;
}

ParameterChoices familyChoices(const WidgetDeclaration& widget) {
    ParameterChoices out;
    for (const auto family : widget.families) out.emplace_back(std::string(rawValue(family)), familyTitle(family));
    return out;
}

}  // namespace

ChoiceLists loadChoiceLists(const std::optional<std::filesystem::path>& container) {
    return {WidgetToolChoiceQuery::suggestedEntities(container),
            WidgetProviderChoiceQuery::suggestedEntities(container)};
}

ParameterChoices choicesFor(const IntentParameter& parameter, const std::optional<std::string>& stored,
                            const ChoiceLists& lists) {
    switch (parameter.type) {
        case IntentParameterType::toolChoice:
            return entityChoices(lists.tools, stored, &toolChoiceForIdentifier);
        case IntentParameterType::providerChoice:
            return entityChoices(lists.providers, stored, &providerChoiceForIdentifier);
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

bool editable(const WidgetDeclaration& widget) {
    return widget.families.size() > 1 || (widget.intent != nullptr && !widget.intent->parameters.empty());
}

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

Dialog::Dialog(const char* title, const char* role)
    : dialog_(gtk_dialog_new()), content_(gtk_dialog_get_content_area(GTK_DIALOG(dialog_))) {
    gtk_window_set_title(GTK_WINDOW(dialog_), title);
    gtk_window_set_role(GTK_WINDOW(dialog_), role);  // tells it from a widget of the same name
    gtk_window_set_type_hint(GTK_WINDOW(dialog_), GDK_WINDOW_TYPE_HINT_DIALOG);
    gtk_window_set_position(GTK_WINDOW(dialog_), GTK_WIN_POS_MOUSE);
    // One size: sway and other tiling compositors float a window whose
    // smallest and largest sizes agree, instead of tiling it full screen.
    gtk_window_set_resizable(GTK_WINDOW(dialog_), FALSE);
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

WidgetPreview::WidgetPreview(DialogServices& services, int width, int height)
    : services_(services), area_(gtk_drawing_area_new()), width_(width), height_(height) {
    gtk_widget_set_size_request(area_, width, height);
    draw_ = connect<gboolean(GtkWidget*, cairo_t*)>(area_, "draw", [this](GtkWidget*, cairo_t* cr) {
        const auto& size = list_.size;
        if (size.width <= 0 || size.height <= 0) return TRUE;
        const double scale = std::min({1.0, width_ / size.width, height_ / size.height});
        cairo_translate(cr, (width_ - size.width * scale) / 2, (height_ - size.height * scale) / 2);
        cairo_scale(cr, scale, scale);
        render::paint(cr, list_, services_.appearance());
        return TRUE;
    });
}

void WidgetPreview::request(const WidgetDeclaration& widget, WidgetFamily family, const IntentParameters& parameters) {
    const unsigned asked = ++*generation_;
    services_.preview(widget, family, parameters,
                      [this, asked, alive = std::weak_ptr<unsigned>(generation_)](render::DisplayList list) {
                          const auto generation = alive.lock();
                          if (!generation || *generation != asked) return;  // gone, or asked again since
                          list_ = std::move(list);
                          gtk_widget_queue_draw(area_);
                      });
}

WidgetSettingsForm::WidgetSettingsForm(const WidgetDeclaration& widget, WidgetSettingsValues values,
                                       const ChoiceLists& lists, const ParameterChoices& monitors, Changed changed)
    : values_(std::move(values)), changed_(std::move(changed)), grid_(gtk_grid_new()) {
    gtk_grid_set_row_spacing(GTK_GRID(grid_), 8);
    gtk_grid_set_column_spacing(GTK_GRID(grid_), 12);
    GtkWidget* size = row("Size", familyChoices(widget), std::string(rawValue(values_.family)),
                          [this](const std::string& raw) {
                              if (const auto family = widgetFamilyFromRaw(raw)) values_.family = *family;
                              changed_(SettingsField::family, "", raw);
                          });
    // A kind with one family shows it without a choice.
    gtk_widget_set_sensitive(size, widget.families.size() > 1);
    if (widget.intent != nullptr)
        for (const auto& parameter : widget.intent->parameters) {
            const auto it = values_.parameters.find(std::string(parameter.name));
            const auto stored = it == values_.parameters.end() ? std::nullopt : std::optional(it->second);
            row(std::string(parameter.title).c_str(), choicesFor(parameter, stored, lists),
                selectedValue(parameter, values_.parameters), [this, name = std::string(parameter.name)](const std::string& value) {
                    values_.parameters[name] = value;
                    changed_(SettingsField::parameter, name, value);
                });
        }
    if (monitors.size() > 1) {
        const auto selected = values_.monitor.value_or(monitors.front().first);
        row("Monitor", monitors, selected, [this](const std::string& identity) {
            values_.monitor = identity;
            changed_(SettingsField::monitor, "", identity);
        });
    }
}

GtkWidget* WidgetSettingsForm::row(const char* title, const ParameterChoices& choices, const std::string& selected,
                                   std::function<void(const std::string&)> chosen) {
    GtkWidget* label = leftLabel(title);
    GtkWidget* list = gtk_combo_box_text_new();
    for (const auto& [value, text] : choices)
        gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(list), value.c_str(), text.c_str());
    if (!gtk_combo_box_set_active_id(GTK_COMBO_BOX(list), selected.c_str()))
        gtk_combo_box_set_active(GTK_COMBO_BOX(list), 0);
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), list);  // the label names the list for screen readers
    gtk_widget_set_hexpand(list, TRUE);
    connections_.push_back(connect<void(GtkComboBox*)>(list, "changed", [chosen = std::move(chosen)](GtkComboBox* combo) {
        if (const char* value = gtk_combo_box_get_active_id(combo); value != nullptr && *value != '\0') chosen(value);
    }));
    gtk_grid_attach(GTK_GRID(grid_), label, 0, rows_, 1, 1);
    gtk_grid_attach(GTK_GRID(grid_), list, 1, rows_, 1, 1);
    ++rows_;
    return list;
}

EditWidgetDialog::EditWidgetDialog(const WidgetDeclaration& widget, WidgetSettingsValues values,
                                   const ChoiceLists& lists, const ParameterChoices& monitors,
                                   DialogServices& services, WidgetSettingsForm::Changed changed)
    : Dialog(widget.intent != nullptr ? std::string(widget.intent->title).c_str()
                                      : std::string(widget.displayName).c_str(),
             "meterwick-edit-widget"),
      widget_(widget),
      monitors_(monitors),
      changed_(std::move(changed)),
      preview_(services, 364, 240),
      formSlot_(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0)) {
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 16);
    gtk_container_set_border_width(GTK_CONTAINER(box), 16);
    gtk_box_pack_start(GTK_BOX(box), preview_.widget(), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), formSlot_, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(content_), box, TRUE, TRUE, 0);
    showForm(std::move(values), lists);
    gtk_widget_show_all(content_);
    preview_.request(widget_, form_->values().family, form_->values().parameters);
    focusForm();
}

// The first setting takes the keyboard, so arrows change it at once.
void EditWidgetDialog::focusForm() {
    GList* children = gtk_container_get_children(GTK_CONTAINER(form_->widget()));
    GtkWidget* first = nullptr;  // the grid lists its children last added first
    for (GList* c = children; c != nullptr; c = c->next)
        if (GTK_IS_COMBO_BOX(c->data) && gtk_widget_get_sensitive(GTK_WIDGET(c->data))) first = GTK_WIDGET(c->data);
    g_list_free(children);
    if (first != nullptr) gtk_widget_grab_focus(first);  // the list passes it to its button
}

void EditWidgetDialog::showForm(WidgetSettingsValues values, const ChoiceLists& lists) {
    if (form_) {  // its handlers go before its lists do
        GtkWidget* old = form_->widget();
        form_.reset();
        gtk_widget_destroy(old);
    }
    form_ = std::make_unique<WidgetSettingsForm>(
        widget_, std::move(values), lists, monitors_,
        [this](SettingsField field, const std::string& name, const std::string& value) {
            changed_(field, name, value);
            if (field != SettingsField::monitor)
                preview_.request(widget_, form_->values().family, form_->values().parameters);
        });
    gtk_box_pack_start(GTK_BOX(formSlot_), form_->widget(), FALSE, FALSE, 0);
    gtk_widget_show_all(formSlot_);
}

void EditWidgetDialog::setChoiceLists(const ChoiceLists& lists) {
    showForm(form_->values(), lists);
    focusForm();
}

AddWidgetDialog::AddWidgetDialog(DialogServices& services, ChoiceLists lists, Add add)
    : Dialog("Add Widget", "meterwick-add-widget"),
      services_(services),
      lists_(std::move(lists)),
      add_(std::move(add)),
      title_(boldLabel("")),
      description_(wrappedLabel("", 40)),
      formSlot_(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0)),
      outcome_(wrappedLabel("", 40)),
      preview_(services, 364, 240) {
    GtkWidget* list = gtk_list_box_new();
    gtk_list_box_set_selection_mode(GTK_LIST_BOX(list), GTK_SELECTION_BROWSE);
    gtk_list_box_set_activate_on_single_click(GTK_LIST_BOX(list), FALSE);  // a click shows, a double click adds
    for (const auto& widget : widgetDeclarations()) {
        Row row{&widget, std::make_unique<WidgetPreview>(services_, 96, 64)};
        GtkWidget* texts = gtk_box_new(GTK_ORIENTATION_VERTICAL, 2);
        gtk_box_pack_start(GTK_BOX(texts), boldLabel(std::string(widget.displayName)), FALSE, FALSE, 0);
        gtk_box_pack_start(GTK_BOX(texts), wrappedLabel(std::string(widget.description), 30), FALSE, FALSE, 0);
        GtkWidget* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
        gtk_container_set_border_width(GTK_CONTAINER(box), 6);
        gtk_box_pack_start(GTK_BOX(box), row.preview->widget(), FALSE, FALSE, 0);
        gtk_box_pack_start(GTK_BOX(box), texts, TRUE, TRUE, 0);
        gtk_list_box_insert(GTK_LIST_BOX(list), box, -1);
        row.preview->request(widget, widget.families.front(), defaultParameters(widget));
        rows_.push_back(std::move(row));
    }
    rowSelected_ = connect<void(GtkListBox*, GtkListBoxRow*)>(list, "row-selected", [this](GtkListBox*, GtkListBoxRow* r) {
        if (r == nullptr) return;
        const auto index = static_cast<std::size_t>(gtk_list_box_row_get_index(r));
        if (index < rows_.size()) {
            const auto& widget = *rows_[index].widget;
            select(widget, {widget.families.front(), defaultParameters(widget), std::nullopt});
        }
    });
    // Enter or a double click on a row adds that widget as set up on the right.
    rowActivated_ = connect<void(GtkListBox*, GtkListBoxRow*)>(list, "row-activated", [this](GtkListBox*, GtkListBoxRow*) {
        if (selected_ != nullptr && form_) add_(*selected_, form_->values());
    });
    GtkWidget* scroller = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(scroller), 560);
    gtk_container_add(GTK_CONTAINER(scroller), list);

    GtkWidget* addButton = gtk_button_new_with_mnemonic("_Add Widget");
    gtk_style_context_add_class(gtk_widget_get_style_context(addButton), GTK_STYLE_CLASS_SUGGESTED_ACTION);
    gtk_widget_set_halign(addButton, GTK_ALIGN_END);
    addClicked_ = connect<void(GtkButton*)>(addButton, "clicked", [this](GtkButton*) {
        if (selected_ != nullptr && form_) add_(*selected_, form_->values());
    });
    GtkWidget* details = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
    gtk_widget_set_size_request(details, 380, -1);
    gtk_box_pack_start(GTK_BOX(details), preview_.widget(), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(details), title_, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(details), description_, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(details), formSlot_, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(details), addButton, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(details), outcome_, FALSE, FALSE, 0);

    GtkWidget* columns = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 16);
    gtk_container_set_border_width(GTK_CONTAINER(columns), 16);
    gtk_box_pack_start(GTK_BOX(columns), scroller, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(columns), details, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(content_), columns, TRUE, TRUE, 0);
    gtk_widget_show_all(content_);
    gtk_list_box_select_row(GTK_LIST_BOX(list), gtk_list_box_get_row_at_index(GTK_LIST_BOX(list), 0));
    gtk_window_set_focus(GTK_WINDOW(dialog_), GTK_WIDGET(gtk_list_box_get_row_at_index(GTK_LIST_BOX(list), 0)));
}

void AddWidgetDialog::select(const WidgetDeclaration& widget, WidgetSettingsValues values) {
    selected_ = &widget;
    gtk_label_set_text(GTK_LABEL(title_), std::string(widget.displayName).c_str());
    gtk_label_set_text(GTK_LABEL(description_), std::string(widget.description).c_str());
    if (form_) {  // its handlers go before its lists do
        GtkWidget* old = form_->widget();
        form_.reset();
        gtk_widget_destroy(old);
    }
    form_ = std::make_unique<WidgetSettingsForm>(
        widget, std::move(values), lists_, ParameterChoices{}, [this](SettingsField, const std::string&, const std::string&) {
            preview_.request(*selected_, form_->values().family, form_->values().parameters);
        });
    gtk_box_pack_start(GTK_BOX(formSlot_), form_->widget(), FALSE, FALSE, 0);
    gtk_widget_show_all(formSlot_);
    preview_.request(widget, form_->values().family, form_->values().parameters);
}

void AddWidgetDialog::setChoiceLists(ChoiceLists lists) {
    lists_ = std::move(lists);
    if (selected_ != nullptr && form_) select(*selected_, form_->values());
}

void AddWidgetDialog::setOutcome(const std::string& text) {
    gtk_label_set_text(GTK_LABEL(outcome_), text.c_str());
}

void AddWidgetDialog::appearanceChanged() {
    preview_.redraw();
    for (auto& row : rows_) row.preview->redraw();
}

UndoNotice::UndoNotice(const std::string& text, std::function<void()> undo)
    : window_(gtk_window_new(GTK_WINDOW_TOPLEVEL)), undo_(std::move(undo)) {
    gtk_window_set_title(GTK_WINDOW(window_), "Widget Removed");
    gtk_window_set_role(GTK_WINDOW(window_), "meterwick-undo");
    gtk_window_set_type_hint(GTK_WINDOW(window_), GDK_WINDOW_TYPE_HINT_DIALOG);
    gtk_window_set_resizable(GTK_WINDOW(window_), FALSE);  // floats on tiling compositors
    gtk_window_set_position(GTK_WINDOW(window_), GTK_WIN_POS_MOUSE);
    gtk_window_set_keep_above(GTK_WINDOW(window_), TRUE);
    GtkWidget* undoButton = gtk_button_new_with_mnemonic("_Undo");
    GtkWidget* closeButton = gtk_button_new_with_mnemonic("_Close");
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
    gtk_container_set_border_width(GTK_CONTAINER(box), 12);
    gtk_box_pack_start(GTK_BOX(box), leftLabel(text), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), undoButton, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), closeButton, FALSE, FALSE, 0);
    gtk_container_add(GTK_CONTAINER(window_), box);
    clicked_ = connect<void(GtkButton*)>(undoButton, "clicked", [this](GtkButton*) {
        auto undo = std::exchange(undo_, nullptr);
        close();
        if (undo) undo();
    });
    closeClicked_ = connect<void(GtkButton*)>(closeButton, "clicked", [this](GtkButton*) { close(); });
    delete_ = connect<gboolean(GtkWidget*, GdkEvent*)>(window_, "delete-event", [this](GtkWidget*, GdkEvent*) {
        close();
        return TRUE;
    });
    expiry_ = timeoutOnce(kUndoMilliseconds, [this] { close(); });
    gtk_widget_show_all(window_);
    gtk_widget_grab_focus(undoButton);
    gtk_window_present(GTK_WINDOW(window_));
}

UndoNotice::~UndoNotice() {
    clicked_.reset();
    closeClicked_.reset();
    delete_.reset();
    gtk_widget_destroy(window_);
}

void UndoNotice::close() {
    expiry_.reset();
    undo_ = nullptr;
    gtk_widget_hide(window_);
}

}  // namespace mw::host
