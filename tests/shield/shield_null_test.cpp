// A null pointer is refused by every form, under the name of its argument.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "orvanth/core_math.h"
#include "orvanth/shield.h"

namespace {

const std::set<std::string> kWrittenByHand = {
#define BYHAND(export) #export,
#include "shield/shield.def"
};

const std::set<std::string> kMayBeNull = {
#define NULLABLE(export, argument) #export "." #argument,
#include "shield/shield.def"
};

// "(double a, double* result)" gives a, result.
std::vector<std::string> Names(const std::string& arguments) {
    std::vector<std::string> names;
    std::istringstream stream(arguments.substr(1, arguments.size() - 2));
    for (std::string argument; std::getline(stream, argument, ',');)
        names.push_back(argument.substr(argument.find_last_of(" *") + 1));
    return names;
}

struct Storage {
    std::vector<double> numbers = std::vector<double>(64, 0.5);
    std::vector<std::int32_t> integers = std::vector<std::int32_t>(64);
};

// Valid arguments of any form: a length of 2, matrices of 2 by 2; null where `isNull` says so.
template <class Argument>
Argument Make(std::vector<Storage>& storage, bool isNull) {
    static const MatrixDescriptor square{0, 2, 2, 2};
    if constexpr (std::is_same_v<Argument, const MatrixDescriptor*>) return isNull ? nullptr : &square;
    if constexpr (std::is_same_v<Argument, double*> || std::is_same_v<Argument, const double*>)
        return isNull ? nullptr : storage.emplace_back().numbers.data();
    if constexpr (std::is_same_v<Argument, std::int32_t*>)
        return isNull ? nullptr : storage.emplace_back().integers.data();
    if constexpr (std::is_same_v<Argument, double>) return 0.5;
    if constexpr (std::is_same_v<Argument, std::int32_t>) return 2;
    return Argument{};
}

template <class Result, class... Arguments>
void ExpectRefusals(const std::string& name, Result (*form)(Arguments...), const std::string& list) {
    if (kWrittenByHand.contains(name)) return;  // tested in shield_handle_test
    const std::vector<std::string> names = Names(list);
    constexpr bool kIsPointer[] = {std::is_pointer_v<Arguments>..., false};
    const auto call = [&](const std::vector<bool>& isNull) {
        std::vector<Storage> storage;
        storage.reserve(sizeof...(Arguments));
        const auto arguments = [&]<std::size_t... i>(std::index_sequence<i...>) {
            return std::tuple<Arguments...>{Make<Arguments>(storage, isNull[i])...};
        }
        (std::index_sequence_for<Arguments...>());
        errno = 7;
        if constexpr (std::is_same_v<Result, std::int32_t>)
            return std::apply(form, arguments);
        else
            std::apply(form, arguments);
        return std::int32_t{0};
    };
    std::vector<bool> all(sizeof...(Arguments) + 1, false);
    for (std::size_t i = 0; i < sizeof...(Arguments); ++i) {
        if (!kIsPointer[i]) continue;
        std::vector<bool> isNull(sizeof...(Arguments) + 1, false);
        isNull[i] = true;
        const std::int32_t answer = call(isNull);
        if (kMayBeNull.contains(name + "." + names[i])) {
            EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK) << name << ": " << names[i] << ": " << LastErrorText();
            continue;
        }
        all[i] = true;
        EXPECT_EQ(LastStatus(), ORVANTH_STATUS_ARGUMENT) << name << ": " << names[i];
        EXPECT_EQ(LastErrorText(), name + ": argument " + names[i] + " is null");
        EXPECT_EQ(LastErrorArgument(), names[i]);
        EXPECT_EQ(errno, EDOM);
        const std::int32_t want =
            std::is_same_v<Result, std::int32_t> ? ORVANTH_REFUSED - static_cast<int>(i + 1) : 0;
        EXPECT_EQ(answer, want) << name << ": " << names[i];
    }
    for (std::size_t i = 0; i < sizeof...(Arguments); ++i) {
        if (!all[i]) continue;
        call(all);
        EXPECT_EQ(LastErrorArgument(), names[i]) << name << ": the first of several is named";
        break;
    }
}

// Where a form has an array, the integers before it are made negative. Answers whether it has one.
template <class Result, class... Arguments>
bool ExpectNegativeLengthIsRefused(const std::string& name, Result (*form)(Arguments...), const std::string& list) {
    constexpr bool kHasMatrix = (std::is_same_v<Arguments, const MatrixDescriptor*> || ...);
    if constexpr (std::is_same_v<Result, double> && !kHasMatrix) {
        constexpr bool kIsArray[] = {std::is_same_v<Arguments, const double*>..., false};
        const auto array = static_cast<std::size_t>(std::ranges::find(kIsArray, true) - kIsArray);
        if (array >= sizeof...(Arguments)) return false;
        const std::string argument = Names(list)[array];
        for (bool isNull : {false, true}) {
            std::vector<Storage> storage;
            storage.reserve(sizeof...(Arguments));
            std::tuple<Arguments...> arguments{Make<Arguments>(storage, isNull)...};
            const auto negate = [](auto& each) {
                if constexpr (std::is_same_v<decltype(each), std::int32_t&>) each = -1;
            };
            std::apply([&](auto&... each) { (negate(each), ...); }, arguments);
            EXPECT_TRUE(std::isnan(std::apply(form, arguments))) << name;
            EXPECT_EQ(LastStatus(), ORVANTH_STATUS_ARGUMENT) << name;
            EXPECT_EQ(LastErrorText(), name + ": argument " + argument + " has a negative length");
            EXPECT_EQ(LastErrorArgument(), argument);
        }
        return true;
    }
    return false;
}

TEST(ShieldNull, EveryArrayOfNegativeLengthIsRefusedByName) {
    int arrays = 0;
#define EXPORT(folder, name, result, arguments, ...) \
    arrays += ExpectNegativeLengthIsRefused(#name, &Safe##name, #arguments);
#include "frame/exports.def"
#undef EXPORT
    EXPECT_GE(arrays, 6);
}

TEST(ShieldNull, EveryPointerOfEveryFormIsRefusedByName) {
#define EXPORT(folder, name, result, arguments, ...) ExpectRefusals(#name, &Safe##name, #arguments);
#include "frame/exports.def"
#undef EXPORT
}

// Arrays without elements are not looked at.
TEST(ShieldNull, WhereNothingIsReadAPointerMayBeNull) {
    EXPECT_TRUE(std::isnan(SafeMCaCDF(1, 0, 10, nullptr, 0)));
    EXPECT_NE(LastStatus(), ORVANTH_STATUS_ARGUMENT) << "k = 0 is answered by the export";
    for (const MatrixDescriptor& empty : {MatrixDescriptor{0, 1, 0, 2}, MatrixDescriptor{0, 2, 2, 0}}) {
        EXPECT_EQ(SafeQR(nullptr, &empty, nullptr), 0) << empty.rows << " by " << empty.columns;
        EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK);
    }
    SafeQR(nullptr, nullptr, nullptr);
    EXPECT_STREQ(LastErrorArgument(), "a");
}

}  // namespace
