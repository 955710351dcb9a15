#pragma once
// The host's dialogs: Add Widget (the five widgets in gallery order, then the
// chosen one's size and options with a preview, placed on a free spot),
// Edit Widget (size, every option and the monitor, applied as they change,
// with a live preview) and the notice that offers to undo a removal.
// Nothing here reads a file: the host hands over the choice lists and draws
// the previews off the main loop.

#include <gtk/gtk.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/host/glib_support.hpp"
#include "bundle/bundle.hpp"
#include "render/color.hpp"
#include "render/display_list.hpp"

namespace mw::host {

// The choices a parameter offers, as (stored value, text shown), in order.
using ParameterChoices = std::vector<std::pair<std::string, std::string>>;

// The tool and provider lists as the payload has them now (read on a worker).
struct ChoiceLists {
    std::vector<WidgetToolChoice> tools;
    std::vector<WidgetProviderChoice> providers;
    bool operator==(const ChoiceLists&) const = default;
};
ChoiceLists loadChoiceLists(const std::optional<std::filesystem::path>& container);

// Tool and provider lists from `lists` (a stored id no longer listed is kept
// as a choice); enumerations by their display texts.
ParameterChoices choicesFor(const IntentParameter& parameter, const std::optional<std::string>& stored,
                            const ChoiceLists& lists);
// The value the dialog shows selected: the stored one, else the default,
// else what an unset parameter means.
std::string selectedValue(const IntentParameter& parameter, const IntentParameters& stored);
// Whether Edit Widget has anything to offer for this kind: a size to choose
// among its families or an option of its intent.
bool editable(const WidgetDeclaration& widget);
// How the dialogs name a family: "Small", "Medium", "Large", "Extra Large".
std::string familyTitle(WidgetFamily family);

// What the dialogs ask of the host.
struct DialogServices {
    std::function<render::Appearance()> appearance;
    // The widget as it would look with these settings, on the current
    // payload when it has data, else on the built-in sample; `done` gets the
    // laid-out widget on the main loop.
    std::function<void(const WidgetDeclaration& widget, WidgetFamily family, const IntentParameters& parameters,
                       std::function<void(render::DisplayList)> done)>
        preview;
};

// A dialog-type window that GTK destroys when this is destroyed. It keeps
// one size (tiling compositors float such windows) and hides on Done,
// Escape or its close button.
class Dialog {
  public:
    // `role` names the kind of dialog to the window manager and to tests.
    Dialog(const char* title, const char* role);
    virtual ~Dialog();
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;
    void present();
    GtkWindow* window() const { return GTK_WINDOW(dialog_); }

  protected:
    GtkWidget* dialog_;
    GtkWidget* content_;

  private:
    Connection response_, delete_;
};

// A preview area that draws a laid-out widget scaled to fit; asks again
// whenever the settings change and shows only the latest answer.
class WidgetPreview {
  public:
    WidgetPreview(DialogServices& services, int width, int height);
    GtkWidget* widget() const { return area_; }
    void request(const WidgetDeclaration& widget, WidgetFamily family, const IntentParameters& parameters);
    void redraw() { gtk_widget_queue_draw(area_); }

  private:
    DialogServices& services_;
    GtkWidget* area_;
    int width_, height_;
    render::DisplayList list_;
    std::shared_ptr<unsigned> generation_ = std::make_shared<unsigned>(0);  // answers to older asks are dropped
    Connection draw_;
};

// A widget's settings: its size among the kind's families, each parameter
// of its intent, and its monitor when there is more than one to choose.
struct WidgetSettingsValues {
    WidgetFamily family = WidgetFamily::systemSmall;
    IntentParameters parameters;
    std::optional<std::string> monitor;
    bool operator==(const WidgetSettingsValues&) const = default;
};
enum class SettingsField { family, parameter, monitor };

class WidgetSettingsForm {
  public:
    // `name` is the parameter's name for a parameter, else empty.
    using Changed = std::function<void(SettingsField field, const std::string& name, const std::string& value)>;
    // Monitors as (identity, text shown); fewer than two: no monitor row.
    WidgetSettingsForm(const WidgetDeclaration& widget, WidgetSettingsValues values, const ChoiceLists& lists,
                       const ParameterChoices& monitors, Changed changed);
    GtkWidget* widget() const { return grid_; }
    const WidgetSettingsValues& values() const { return values_; }

  private:
    GtkWidget* row(const char* title, const ParameterChoices& choices, const std::string& selected,
                   std::function<void(const std::string&)> chosen);

    WidgetSettingsValues values_;
    Changed changed_;
    GtkWidget* grid_;
    int rows_ = 0;
    std::vector<Connection> connections_;
};

class EditWidgetDialog : public Dialog {
  public:
    EditWidgetDialog(const WidgetDeclaration& widget, WidgetSettingsValues values, const ChoiceLists& lists,
                     const ParameterChoices& monitors, DialogServices& services, WidgetSettingsForm::Changed changed);
    void appearanceChanged() { preview_.redraw(); }
    // Newer tool and provider lists: the choices are offered again, as set.
    void setChoiceLists(const ChoiceLists& lists);

  private:
    void showForm(WidgetSettingsValues values, const ChoiceLists& lists);
    void focusForm();

    const WidgetDeclaration& widget_;
    ParameterChoices monitors_;
    WidgetSettingsForm::Changed changed_;
    WidgetPreview preview_;
    GtkWidget* formSlot_;
    std::unique_ptr<WidgetSettingsForm> form_;
};

class AddWidgetDialog : public Dialog {
  public:
    using Add = std::function<void(const WidgetDeclaration& widget, const WidgetSettingsValues& values)>;
    AddWidgetDialog(DialogServices& services, ChoiceLists lists, Add add);

    void appearanceChanged();
    // Newer tool and provider lists: the choices are offered again, as set.
    void setChoiceLists(ChoiceLists lists);
    // Says under the Add button what became of the last widget added.
    void setOutcome(const std::string& text);

  private:
    struct Row {
        const WidgetDeclaration* widget = nullptr;
        std::unique_ptr<WidgetPreview> preview;
    };
    void select(const WidgetDeclaration& widget, WidgetSettingsValues values);

    DialogServices& services_;
    ChoiceLists lists_;
    Add add_;
    std::vector<Row> rows_;
    const WidgetDeclaration* selected_ = nullptr;
    GtkWidget* title_;
    GtkWidget* description_;
    GtkWidget* formSlot_;
    GtkWidget* outcome_;
    WidgetPreview preview_;
    std::unique_ptr<WidgetSettingsForm> form_;
    Connection rowSelected_, rowActivated_, addClicked_;
};

// "Removed Tool Focus." with Undo, for a few seconds; `undo` at most once.
class UndoNotice {
  public:
    UndoNotice(const std::string& text, std::function<void()> undo);
    ~UndoNotice();
    UndoNotice(const UndoNotice&) = delete;
    UndoNotice& operator=(const UndoNotice&) = delete;
    bool shown() const { return gtk_widget_get_visible(window_) != FALSE; }

  private:
    void close();

    GtkWidget* window_;
    std::function<void()> undo_;
    Connection clicked_, closeClicked_, delete_;
    Source expiry_;
};

}  // namespace mw::host
