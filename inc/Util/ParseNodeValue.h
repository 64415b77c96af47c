// Util::NodeVariantData: the value an expression parse node computes, and the status codes the
// expression engine uses.
//
// Contract: a value is none, a 32-bit long, a double or a string, plus an error status. Strings
// up to 99 characters live in an inline buffer; longer ones move to the heap. Arithmetic follows
// the *actual* stored type: a string holding an integral number ("12") counts as a long, one
// holding another number (" 1.5") as a double, anything else as text. Long arithmetic wraps
// around in 32 bits; long division by zero gives 2147483647 and double division by zero gives the
// largest double (both intended, never a failure). "+" on text concatenates; the other operators
// on text give a text describing the operation ("a SUBTRACT b") with status PNS_TEXT_OPERATION.
// Doubles compare equal within 0.0001. A binary operator whose left (else right) operand carries
// an error returns a copy of that operand, message and status. Doubles outside the long range
// saturate when converted to long (NaN gives 0). Nothing here throws.
//
// Conversions: to long, doubles truncate toward zero and strings go through strtod; to text,
// longs are written in decimal and doubles with "%g" (into a 50-character scratch area, so the
// text returned for a number lives as long as the value and until its next conversion).
#pragma once

#include <cstddef>
#include <cstdint>

#include "Util/Export.h"

namespace Util {

class Variant;
class ParseTreeEngine;

enum ParseNodeStatus {
    PNS_SUCCESS = 0,
    PNS_ALIAS_PAREN_MISSING = 2, // "$" not followed by "("
    PNS_RIGHT_PAREN_MISSING = 3, // ")" missing, or a bad separator between function arguments
    PNS_NOT_LVALUE = 4,          // the left side of ":=" is not a variable
    PNS_SYNTAX_ERROR = 5,        // unexpected token, or text left over after the expression
    PNS_ALIAS_NAME_MISSING = 6,  // no name after "$("
    PNS_UNDEFINED_SYMBOL = 7,
    PNS_UNDEFINED_ALIAS = 9,
    PNS_NO_PARSE_TREE = 10, // execution without a parse tree
    PNS_NO_SYMBOL_TABLE = 11,
    PNS_TEXT_OPERATION = 12, // an operator other than "+" applied to text
    PNS_WRONG_PARAMETER_COUNT = 14,
    PNS_RECURSIVE_ALIAS = 15, // an alias whose tree refers back to itself
    PNS_OUT_OF_MEMORY = 16    // a text too long for the memory available ("Out of memory ")
};

enum NodeVariantDataType {
    NVDT_NONE = 0,
    NVDT_LONG = 1,
    NVDT_DOUBLE = 2,
    NVDT_STRING = 3,
    NVDT_FIFTH = 4 // accepted by no operation
};

class ZTUTIL_API NodeVariantData {
public:
    static constexpr std::size_t kInlineSize = 100;
    static constexpr std::size_t kScratchSize = 50;

    NodeVariantData() noexcept;
    NodeVariantData(int value) noexcept;
    NodeVariantData(long value) noexcept; // kept in 32 bits
    NodeVariantData(double value) noexcept;
    NodeVariantData(const char* value);   // null gives the empty text
    NodeVariantData(bool value) noexcept; // a long 1 or 0
    NodeVariantData(const NodeVariantData& other);
    virtual ~NodeVariantData();

    NodeVariantData& operator=(const NodeVariantData& other);
    NodeVariantData& operator=(int value);
    NodeVariantData& operator=(long value);
    NodeVariantData& operator=(double value);
    NodeVariantData& operator=(const char* value);
    NodeVariantData& operator=(bool value);
    // Integers become longs (those outside 32 bits become doubles), bools longs 1/0, wide text
    // narrow text, and an empty Variant none. The error status is cleared.
    NodeVariantData& operator=(const Variant& value);

    explicit operator Variant() const;
    explicit operator int() const;
    explicit operator long() const;
    explicit operator double() const;
    explicit operator const char*() const;

    NodeVariantData operator+(const NodeVariantData& right) const;
    NodeVariantData operator-(const NodeVariantData& right) const;
    NodeVariantData operator-() const;
    NodeVariantData operator*(const NodeVariantData& right) const;
    NodeVariantData operator/(const NodeVariantData& right) const;
    NodeVariantData operator<(const NodeVariantData& right) const;
    NodeVariantData operator<=(const NodeVariantData& right) const;
    NodeVariantData operator>(const NodeVariantData& right) const;
    NodeVariantData operator>=(const NodeVariantData& right) const;
    NodeVariantData operator==(const NodeVariantData& right) const;
    NodeVariantData operator!=(const NodeVariantData& right) const;
    NodeVariantData operator&(const NodeVariantData& right) const;
    NodeVariantData operator||(const NodeVariantData& right) const;

    ParseNodeStatus GetErrorStatus() const { return m_status; }
    void SetErrorStatus(ParseNodeStatus status) { m_status = status; }
    bool HasError() const { return m_status != PNS_SUCCESS; }

    NodeVariantDataType GetDataType() const { return m_type; }
    NodeVariantDataType GetActualStoredDataType() const;
    bool IsValidNumber() const;
    bool IsValidIntNumber() const;

    std::int32_t GetLong() const;
    double GetDouble() const;
    // The value as text (numbers are written into the scratch area).
    const char* GetText() const;
    std::size_t GetStringCapacity() const { return m_capacity; }

    // Stores the concatenation of up to three texts as a string with the given status.
    void SetText(const char* a, const char* b = "", const char* c = "",
                 ParseNodeStatus status = PNS_SUCCESS);

protected:
    // <0, 0, >0 like strcmp; with an error on either side that status is passed out and 0
    // returned.
    int compare(const NodeVariantData& other, ParseNodeStatus& status) const;

private:
    friend class ParseTreeEngine; // evaluates plain numbers without temporaries

    void SetLongValue(std::int32_t value) noexcept {
        m_type = NVDT_LONG;
        m_actualType = NVDT_LONG;
        m_actualKnown = true;
        m_long = value;
        m_double = 0.0;
        m_pString[0] = '\0';
        m_length = 0;
    }
    void SetDoubleValue(double value) noexcept {
        m_type = NVDT_DOUBLE;
        m_actualType = NVDT_DOUBLE;
        m_actualKnown = true;
        m_long = 0;
        m_double = value;
        m_pString[0] = '\0';
        m_length = 0;
    }
    bool AssignString(const char* text, std::size_t length); // false: out of memory
    char* Reserve(std::size_t length);                       // room for length + 1, keeps nothing
    void ReleaseHeap() noexcept;
    void SetOutOfMemory() noexcept;
    // this = left + right for texts, reusing left's heap block (left is emptied); false, and
    // nothing changed, when the sum is not a plain concatenation.
    bool AppendTaking(NodeVariantData& left, const NodeVariantData& right);
    NodeVariantData Compared(const NodeVariantData& right, int kind) const;
    NodeVariantData TextOperation(const NodeVariantData& right, const char* word) const;

    NodeVariantDataType m_type;
    ParseNodeStatus m_status;
    mutable NodeVariantDataType m_actualType; // for strings: worked out on first use
    mutable bool m_actualKnown;
    std::int32_t m_long;
    double m_double;
    char* m_pString; // m_inline or a heap block of m_capacity characters
    std::uint32_t m_capacity;
    std::uint32_t m_length;
    char m_inline[kInlineSize];
    mutable char m_scratch[kScratchSize];
};

} // namespace Util
