#pragma once

namespace mw {

// One callable out of several lambdas, for std::visit over a variant.
template <class... Fs>
struct Overloaded : Fs... {
    using Fs::operator()...;
};
template <class... Fs>
Overloaded(Fs...) -> Overloaded<Fs...>;

}  // namespace mw
