#include "render/display_list.hpp"

namespace mw::render {

std::string TextDraw::text() const {
    std::string out;
    for (const auto& r : runs) out += r.text;
    return out;
}

std::string urlAt(const DisplayList& list, Point p) {
    for (auto it = list.links.rbegin(); it != list.links.rend(); ++it) {
        if (it->rect.contains(p)) return it->url;
    }
    return list.tapURL;
}

}  // namespace mw::render
