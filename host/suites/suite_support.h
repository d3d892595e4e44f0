// What every suite is made of: a record whose slots all refuse until served ones are filled in, a guard that turns
// whatever a slot throws into its result code, and handles that name an object by kind, generation and number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

#include "hostapi/suites.h"

namespace quorvel::host {

// --- refusals ----------------------------------------------------------------------------------------------------

// Thrown inside a slot to leave with a code; it never leaves the guard.
struct Refusal {
    AIErr code;
};

inline void require(bool condition, AIErr code = kBadParameterErr) {
    if (!condition) throw Refusal{code};
}

template <typename T>
T& deref(T* pointer) {
    require(pointer != nullptr);
    return *pointer;
}

template <typename Result, typename... Arguments>
Result refused(Arguments...) {
    if constexpr (std::is_same_v<Result, AIErr>) {
        return kRefusedErr;
    } else if constexpr (!std::is_void_v<Result>) {
        return Result{};
    }
}

// Becomes a refusing function of whatever type the slot has.
struct RefusingSlot {
    template <typename Result, typename... Arguments>
    using Function = Result (*)(Arguments...);
    template <typename Result, typename... Arguments>
    constexpr operator Function<Result, Arguments...>() const {
        return &refused<Result, Arguments...>;
    }
};

template <typename Suite>
constexpr Suite refusingSuite() {
    constexpr std::size_t slots = sizeof(Suite) / sizeof(void (*)());
    static_assert(slots * sizeof(void (*)()) == sizeof(Suite), "a suite holds function pointers alone");
    return []<std::size_t... I>(std::index_sequence<I...>) { return Suite{(static_cast<void>(I), RefusingSlot{})...}; }
    (std::make_index_sequence<slots>{});
}

// A boolean and a code are one type, and a refusal's code would read as "true".
enum class Failure { kCode, kZero };

template <auto function, Failure failure>
struct Guard;

template <typename Result, typename... Arguments, Result (*function)(Arguments...), Failure failure>
struct Guard<function, failure> {
    static constexpr bool givesCode = failure == Failure::kCode && std::is_same_v<Result, AIErr>;

    static Result call(Arguments... arguments) noexcept {
        [[maybe_unused]] AIErr code = kRefusedErr;
        try {
            return function(arguments...);
        } catch (const Refusal& refusal) {
            code = refusal.code;
        } catch (const std::bad_alloc&) {
            code = kOutOfMemoryErr;
        } catch (...) {
            code = kRefusedErr;  // whoever called can do nothing with the cause, and it may not cross
        }
        if constexpr (givesCode) {
            return code;
        } else if constexpr (!std::is_void_v<Result>) {
            return Result{};
        }
    }
};

template <auto function>
constexpr auto slot = &Guard<function, Failure::kCode>::call;
template <auto function>
constexpr auto booleanSlot = &Guard<function, Failure::kZero>::call;

struct SuiteRecord {
    const void* record = nullptr;
    std::size_t size = 0;
};

template <typename Suite>
SuiteRecord recordOf(const Suite& suite) {
    return {&suite, sizeof(Suite)};
}

// --- handles -----------------------------------------------------------------------------------------------------

template <typename Handle>
constexpr std::uint8_t handleKind = 0;
template <>
inline constexpr std::uint8_t handleKind<AIArtHandle> = 1;
template <>
inline constexpr std::uint8_t handleKind<AILayerHandle> = 2;
template <>
inline constexpr std::uint8_t handleKind<AIDocumentViewHandle> = 3;
template <>
inline constexpr std::uint8_t handleKind<AIToolHandle> = 4;
template <>
inline constexpr std::uint8_t handleKind<AIMenuItemHandle> = 5;
template <>
inline constexpr std::uint8_t handleKind<AIMenuGroup> = 6;
template <>
inline constexpr std::uint8_t handleKind<AITimerHandle> = 7;
template <>
inline constexpr std::uint8_t handleKind<AINotifierHandle> = 8;
template <>
inline constexpr std::uint8_t handleKind<AIPanelRef> = 9;
template <>
inline constexpr std::uint8_t handleKind<AIPanelFlyoutMenuRef> = 10;
template <>
inline constexpr std::uint8_t handleKind<AIFontKey> = 11;
template <>
inline constexpr std::uint8_t handleKind<ATEFontRef> = 12;
template <>
inline constexpr std::uint8_t handleKind<AIActionParamValueRef> = 13;
template <>
inline constexpr std::uint8_t handleKind<AIUnicodeStringRef> = 14;
template <>
inline constexpr std::uint8_t handleKind<SPPluginRef> = 15;
template <>
inline constexpr std::uint8_t handleKind<SPAccessRef> = 16;
template <>
inline constexpr std::uint8_t handleKind<ATETextRangeRef> = 17;
template <>
inline constexpr std::uint8_t handleKind<ATECharFeaturesRef> = 18;
template <>
inline constexpr std::uint8_t handleKind<ATEParaFeaturesRef> = 19;
template <>
inline constexpr std::uint8_t handleKind<ATEApplicationPaintRef> = 20;

// kind (8 bits) above generation (16 bits) above number (32 bits). The generation tells art of another document and
// texts of another message from those of now; 0 for what lives as long as the host.
template <typename Handle>
Handle makeHandle(std::uint32_t number, std::uint16_t generation = 0) {
    static_assert(handleKind<Handle> != 0);
    if (number == 0) return nullptr;
    const std::uint64_t word =
        std::uint64_t{handleKind<Handle>} << 48 | std::uint64_t{generation} << 32 | std::uint64_t{number};
    return reinterpret_cast<Handle>(static_cast<std::uintptr_t>(word));
}

// The number, from 1. Refuses null and other kinds as bad, another generation as stale.
template <typename Handle>
std::uint32_t numberOf(Handle handle, std::uint16_t generation = 0) {
    const std::uint64_t word = reinterpret_cast<std::uintptr_t>(handle);
    require(word >> 48 == handleKind<Handle>);
    require(static_cast<std::uint16_t>(word >> 32) == generation, kStaleHandleErr);
    require(static_cast<std::uint32_t>(word) != 0);
    return static_cast<std::uint32_t>(word);
}

}  // namespace quorvel::host
