// The value rules of the expression engine, each written once: the arithmetic of longs and
// doubles (32-bit wrap-around, the results of division by zero), the ordering of two numbers
// (the tolerance for doubles), what a comparison makes of an ordering, and what counts as true.
// NodeVariantData's operators and the tree evaluator's shortcut for plain numbers both compute
// through these, so the two cannot disagree.
#pragma once

#include <cfloat>
#include <cstdint>

#include "Util/ParseNode.h"

namespace Util {
namespace NodeRules {

// Doubles closer than this compare equal (intended: 0.1 + 0.2 == 0.3).
constexpr double kCompareTolerance = 0.0001;
// Division by zero never fails: long division gives the largest long, double division the
// largest double.
constexpr std::int32_t kLongQuotientOfZero = 2147483647;
constexpr double kDoubleQuotientOfZero = DBL_MAX;

enum Arithmetic { kAddition, kSubtraction, kMultiplication, kDivision };

// 32-bit two's complement wrap-around, without signed overflow.
inline std::int32_t Wrap(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(value)));
}

// Longs are computed in 64 bits and wrapped, so INT32_MIN / -1 wraps like the other operations.
inline std::int32_t LongArithmetic(Arithmetic operation, std::int32_t left, std::int32_t right) {
    switch (operation) {
    case kAddition:
        return Wrap(static_cast<std::int64_t>(left) + right);
    case kSubtraction:
        return Wrap(static_cast<std::int64_t>(left) - right);
    case kMultiplication:
        return Wrap(static_cast<std::int64_t>(left) * right);
    default:
        return right == 0 ? kLongQuotientOfZero : Wrap(static_cast<std::int64_t>(left) / right);
    }
}

inline double DoubleArithmetic(Arithmetic operation, double left, double right) {
    switch (operation) {
    case kAddition:
        return left + right;
    case kSubtraction:
        return left - right;
    case kMultiplication:
        return left * right;
    default:
        return right == 0.0 ? kDoubleQuotientOfZero : left / right;
    }
}

inline std::int32_t NegateLong(std::int32_t value) {
    return Wrap(-static_cast<std::int64_t>(value));
}

// Orderings: below zero when left comes first, zero when equal. Longs give left - right
// (saturated to 32 bits), doubles -1, 0 or 1 within the tolerance.
inline int LongOrder(std::int32_t left, std::int32_t right) {
    const std::int64_t difference = static_cast<std::int64_t>(left) - right;
    return difference < INT32_MIN   ? INT32_MIN
           : difference > INT32_MAX ? INT32_MAX
                                    : static_cast<int>(difference);
}

inline int DoubleOrder(double left, double right) {
    const double difference = left - right;
    return difference < -kCompareTolerance ? -1 : difference > kCompareTolerance ? 1 : 0;
}

// Whether a comparison of the given kind (CT_LESS .. CT_NOT_EQUAL) holds for an ordering.
inline bool Holds(CompareType kind, int order) {
    switch (kind) {
    case CT_LESS:
        return order < 0;
    case CT_LESS_EQUAL:
        return order <= 0;
    case CT_GREATER:
        return order > 0;
    case CT_GREATER_EQUAL:
        return order >= 0;
    case CT_EQUAL:
        return order == 0;
    default:
        return order != 0;
    }
}

// A value is true when it converts to a long other than 0.
inline bool IsTrue(const NodeVariantData& value) {
    return value.GetLong() != 0;
}

// Whether the left operand of an AND (isAnd) or an OR settles the result alone: the right
// operand is then never evaluated, and the result is the left operand's truth.
inline bool Settles(bool isAnd, bool leftIsTrue) {
    return isAnd ? !leftIsTrue : leftIsTrue;
}

} // namespace NodeRules
} // namespace Util
