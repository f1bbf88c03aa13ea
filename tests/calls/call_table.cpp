#include "call_table.h"

#include <tuple>
#include <type_traits>
#include <utility>

#include "arguments.h"
#include "record_arguments.h"
#include "special_calls.h"

namespace tqtest {
namespace {

/// Draws the arguments one after the other, in their order on every compiler, then calls.
template <class Function, class... Made>
void DrawAndCall(Function function, Checking, Scene& scene, Fingerprint& print, const std::string_view*,
                 std::type_identity<std::tuple<>>, Made&... made) {
    scene.Make(print, [&] { return function(made.Pass()...); });
    (made.Add(print), ...);
}

template <class Function, class First, class... Rest, class... Made>
void DrawAndCall(Function function, Checking checking, Scene& scene, Fingerprint& print,
                 const std::string_view* names, std::type_identity<std::tuple<First, Rest...>>,
                 Made&... made) {
    Argument<First> argument(scene, *names, checking);
    DrawAndCall(function, checking, scene, print, names + 1, std::type_identity<std::tuple<Rest...>>(),
                made..., argument);
}

template <class Result, class... Parameters>
void Call(Result(TQ_CALL* function)(Parameters...), Checking checking, Scene& scene, Fingerprint& print,
          std::initializer_list<std::string_view> names) {
    DrawAndCall(function, checking, scene, print, names.begin(),
                std::type_identity<std::tuple<Parameters...>>());
}

template <class Result, class... Parameters>
constexpr bool ReadsOnly(Result(TQ_CALL*)(Parameters...)) {
    return (std::is_same_v<Parameters, const TqImage*> || ...) &&
           !(std::is_same_v<Parameters, TqImage*> || ...);
}

std::vector<CallEntry> MakeTable() {
    std::vector<CallEntry> table = {
#define CODES(...) \
    { __VA_ARGS__ }
#define CALL(function, how, memoryCodes, imageCodes, ...)                                                   \
    {#function,                                                                                             \
     [](Scene& scene, Fingerprint& print) { Call(&function, Checking::how, scene, print, {__VA_ARGS__}); }, \
     ReadsOnly(&function),                                                                                  \
     Checking::how == Checking::kChecked,                                                                   \
     memoryCodes,                                                                                           \
     imageCodes,                                                                                            \
     {__VA_ARGS__}},
#include "calls.inc"
#undef CALL
#undef CODES
    };
    for (CallEntry& entry : table) {
        if (const auto special = SpecialCall(entry.name)) entry.call = special;
    }
    return table;
}

}  // namespace

const std::vector<CallEntry>& AllCalls() {
    static const std::vector<CallEntry> table = MakeTable();
    return table;
}

std::uint64_t CallOnce(const CallEntry& entry, Draw& draw, std::int32_t largest) {
    Scene scene(draw, largest);
    Fingerprint print;
    entry.call(scene, print);
    scene.Add(print);
    return print.Value();
}

}  // namespace tqtest
