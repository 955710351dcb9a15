#pragma once
// The host's two dialogs: Edit Widget (the intent's parameters, applied as
// they change) and Add Widget (the five widgets in gallery order with a
// preview, their description and a family choice).

#include <gtkmm.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

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

class EditWidgetDialog : public Gtk::Dialog {
  public:
    using Apply = std::function<void(const std::string& name, const std::string& value)>;
    EditWidgetDialog(const IntentDescription& intent, const IntentParameters& stored,
                     const std::optional<std::filesystem::path>& container, Apply apply);

  private:
    Gtk::Grid grid_;
    std::vector<std::unique_ptr<Gtk::Label>> labels_;
    std::vector<std::unique_ptr<Gtk::ComboBoxText>> lists_;
    Apply apply_;
};

class AddWidgetDialog : public Gtk::Dialog {
  public:
    using Add = std::function<void(const WidgetDeclaration& widget, WidgetFamily family)>;
    AddWidgetDialog(std::function<render::Appearance()> appearance, Add add);

    void appearanceChanged();

  private:
    struct Row {
        const WidgetDeclaration* widget = nullptr;
        Gtk::Box box{Gtk::ORIENTATION_HORIZONTAL, 16};
        Gtk::DrawingArea preview;
        Gtk::Box texts{Gtk::ORIENTATION_VERTICAL, 4};
        Gtk::Label name;
        Gtk::Label description;
        Gtk::Box controls{Gtk::ORIENTATION_HORIZONTAL, 8};
        Gtk::ComboBoxText family;
        Gtk::Button add{"Add"};
        render::DisplayList list;
    };
    void updatePreview(Row& row);

    std::function<render::Appearance()> appearance_;
    Add add_;
    Gtk::ScrolledWindow scroller_;
    Gtk::Box rowsBox_{Gtk::ORIENTATION_VERTICAL, 12};
    std::vector<std::unique_ptr<Row>> rows_;
};

}  // namespace mw::host
