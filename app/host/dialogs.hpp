#pragma once
// The host's two dialogs: Edit Widget (the intent's parameters, applied as
// they change) and Add Widget (the five widgets in gallery order with a
// preview, their description and a family choice).

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

// Tool and provider lists from a fresh load of the container's payload (a
// stored id no longer listed is kept as a choice); enumerations by their
// display texts.
ParameterChoices choicesFor(const IntentParameter& parameter, const std::optional<std::string>& stored,
                            const std::optional<std::filesystem::path>& container);
// The value the dialog shows selected: the stored one, else the default,
// else what an unset parameter means.
std::string selectedValue(const IntentParameter& parameter, const IntentParameters& stored);

// A dialog window that GTK destroys when this is destroyed.
class Dialog {
  public:
    Dialog();
    ~Dialog();
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;
    void present();

  protected:
    GtkWidget* dialog_;
    GtkWidget* content_;

  private:
    Connection response_, delete_;
};

class EditWidgetDialog : public Dialog {
  public:
    using Apply = std::function<void(const std::string& name, const std::string& value)>;
    EditWidgetDialog(const IntentDescription& intent, const IntentParameters& stored,
                     const std::optional<std::filesystem::path>& container, Apply apply);

  private:
    Apply apply_;
    std::vector<Connection> changed_;
};

class AddWidgetDialog : public Dialog {
  public:
    using Add = std::function<void(const WidgetDeclaration& widget, WidgetFamily family)>;
    AddWidgetDialog(std::function<render::Appearance()> appearance, Add add);

    void appearanceChanged();

  private:
    struct Row {
        const WidgetDeclaration* widget = nullptr;
        GtkWidget* preview = nullptr;
        GtkWidget* family = nullptr;
        render::DisplayList list;
        Connection draw, familyChanged, clicked;
    };
    void updatePreview(Row& row);

    std::function<render::Appearance()> appearance_;
    Add add_;
    std::vector<std::unique_ptr<Row>> rows_;
};

}  // namespace mw::host
