#include "Util/ParseNodeValue.h"

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "Util/MemoryManager.h"
#include "Util/Variant.h"
#include "expression/src/noderules.h"

namespace Util {
namespace {

enum OperationKind { kNoResult = 0, kLongOp = 1, kDoubleOp = 2, kTextOp = 3 };

// Rows: left actual type, columns: right actual type (none, long, double, string, fifth).
const unsigned char kOperationTable[5][5] = {
    {kLongOp, kLongOp, kDoubleOp, kTextOp, kNoResult},
    {kLongOp, kLongOp, kDoubleOp, kTextOp, kNoResult},
    {kDoubleOp, kDoubleOp, kDoubleOp, kTextOp, kNoResult},
    {kTextOp, kTextOp, kTextOp, kTextOp, kNoResult},
    {kNoResult, kNoResult, kNoResult, kNoResult, kNoResult},
};

std::int32_t SaturateToLong(double value) {
    if (std::isnan(value))
        return 0;
    if (value >= 2147483647.0)
        return 2147483647;
    if (value <= -2147483648.0)
        return INT32_MIN;
    return static_cast<std::int32_t>(value); // truncates toward zero
}

using NodeRules::Wrap;

bool IsNumberCharacter(char c) {
    return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.' ||
           std::isspace(static_cast<unsigned char>(c)) != 0;
}

} // namespace

NodeVariantData::NodeVariantData() noexcept
    : m_type(NVDT_NONE), m_status(PNS_SUCCESS), m_actualType(NVDT_NONE), m_actualKnown(true),
      m_long(0), m_double(0.0), m_pString(m_inline), m_capacity(kInlineSize), m_length(0) {
    m_inline[0] = '\0';
}

NodeVariantData::NodeVariantData(int value) noexcept : NodeVariantData() {
    SetLongValue(value);
}

NodeVariantData::NodeVariantData(long value) noexcept : NodeVariantData() {
    SetLongValue(Wrap(value));
}

NodeVariantData::NodeVariantData(double value) noexcept : NodeVariantData() {
    SetDoubleValue(value);
}

NodeVariantData::NodeVariantData(const char* value) : NodeVariantData() {
    AssignString(value != nullptr ? value : "", value != nullptr ? std::strlen(value) : 0);
}

NodeVariantData::NodeVariantData(bool value) noexcept : NodeVariantData() {
    SetLongValue(value ? 1 : 0);
}

NodeVariantData::NodeVariantData(const NodeVariantData& other) : NodeVariantData() {
    *this = other;
}

NodeVariantData::~NodeVariantData() {
    ReleaseHeap();
}

void NodeVariantData::ReleaseHeap() noexcept {
    if (m_pString != m_inline) {
        delete[] m_pString;
        m_pString = m_inline;
        m_capacity = kInlineSize;
    }
}

// A text that cannot be stored is an error value, never an empty text that looks like a result.
void NodeVariantData::SetOutOfMemory() noexcept {
    static const char kText[] = "Out of memory ";
    static_assert(sizeof kText <= kInlineSize, "the message fits the inline buffer");
    ReleaseHeap();
    m_type = NVDT_STRING;
    m_status = PNS_OUT_OF_MEMORY;
    m_actualKnown = false;
    m_long = 0;
    m_double = 0.0;
    std::memcpy(m_pString, kText, sizeof kText);
    m_length = sizeof kText - 1;
}

char* NodeVariantData::Reserve(std::size_t length) {
    // The inline buffer takes texts shorter than its size less one; a heap block takes anything
    // that fits it, so it is kept (with its capacity) until a longer text comes.
    const bool fits = m_pString == m_inline ? length + 1 < kInlineSize : length + 1 <= m_capacity;
    if (!fits) {
        char* block =
            Detail::ShouldFailAllocation() ? nullptr : new (std::nothrow) char[length + 1];
        if (block == nullptr)
            return nullptr;
        ReleaseHeap();
        m_pString = block;
        m_capacity = static_cast<std::uint32_t>(length + 1);
    }
    return m_pString;
}

bool NodeVariantData::AssignString(const char* text, std::size_t length) {
    m_type = NVDT_STRING;
    m_actualKnown = false;
    m_long = 0;
    m_double = 0.0;
    if (length >= UINT32_MAX || Reserve(length) == nullptr) {
        SetOutOfMemory();
        return false;
    }
    if (length != 0)
        std::memmove(m_pString, text, length);
    m_pString[length] = '\0';
    m_length = static_cast<std::uint32_t>(length);
    return true;
}

void NodeVariantData::SetText(const char* a, const char* b, const char* c, ParseNodeStatus status) {
    const std::size_t la = std::strlen(a), lb = std::strlen(b), lc = std::strlen(c);
    const std::size_t length = la + lb + lc;
    // The parts may live in our own buffer: build in a fresh block when they could.
    const bool overlaps = (a >= m_pString && a < m_pString + m_capacity) ||
                          (b >= m_pString && b < m_pString + m_capacity) ||
                          (c >= m_pString && c < m_pString + m_capacity);
    if (overlaps) {
        NodeVariantData built;
        built.SetText(a, b, c, status);
        *this = built;
        return;
    }
    m_type = NVDT_STRING;
    m_status = status;
    m_actualKnown = false;
    m_long = 0;
    m_double = 0.0;
    char* out = length >= UINT32_MAX ? nullptr : Reserve(length);
    if (out == nullptr) {
        SetOutOfMemory();
        return;
    }
    std::memcpy(out, a, la);
    std::memcpy(out + la, b, lb);
    std::memcpy(out + la + lb, c, lc);
    out[length] = '\0';
    m_length = static_cast<std::uint32_t>(length);
}

NodeVariantData& NodeVariantData::operator=(const NodeVariantData& other) {
    if (this == &other)
        return *this;
    m_status = other.m_status;
    if (other.m_type == NVDT_STRING) {
        if (!AssignString(other.m_pString, other.m_length))
            return *this; // the copy is the out-of-memory error value
        m_actualType = other.m_actualType;
        m_actualKnown = other.m_actualKnown;
        m_status = other.m_status;
        return *this;
    }
    m_type = other.m_type;
    m_actualType = other.m_actualType;
    m_actualKnown = true;
    m_long = other.m_long;
    m_double = other.m_double;
    m_pString[0] = '\0';
    m_length = 0;
    return *this;
}

NodeVariantData& NodeVariantData::operator=(int value) {
    m_status = PNS_SUCCESS;
    SetLongValue(value);
    return *this;
}

NodeVariantData& NodeVariantData::operator=(long value) {
    m_status = PNS_SUCCESS;
    SetLongValue(Wrap(value));
    return *this;
}

NodeVariantData& NodeVariantData::operator=(double value) {
    m_status = PNS_SUCCESS;
    SetDoubleValue(value);
    return *this;
}

NodeVariantData& NodeVariantData::operator=(const char* value) {
    m_status = PNS_SUCCESS;
    if (value == nullptr)
        value = "";
    if (value >= m_pString && value < m_pString + m_capacity) {
        NodeVariantData copy(value);
        return *this = copy;
    }
    AssignString(value, std::strlen(value));
    return *this;
}

NodeVariantData& NodeVariantData::operator=(bool value) {
    m_status = PNS_SUCCESS;
    SetLongValue(value ? 1 : 0);
    return *this;
}

NodeVariantData& NodeVariantData::operator=(const Variant& value) {
    m_status = PNS_SUCCESS;
    const __util_Variant& data = value.GetData();
    switch (data.vt & 0xFF00u) {
    case UTIL_VT_SIGNED_CLASS:
        if (data.llVal >= INT32_MIN && data.llVal <= INT32_MAX)
            SetLongValue(static_cast<std::int32_t>(data.llVal));
        else
            SetDoubleValue(static_cast<double>(data.llVal));
        break;
    case UTIL_VT_UNSIGNED_CLASS:
        if (data.ullVal <= INT32_MAX)
            SetLongValue(static_cast<std::int32_t>(data.ullVal));
        else
            SetDoubleValue(static_cast<double>(data.ullVal));
        break;
    case UTIL_VT_REAL_CLASS:
        SetDoubleValue(data.dblVal);
        break;
    case UTIL_VT_BOOL_CLASS:
        SetLongValue(data.boolVal ? 1 : 0);
        break;
    case UTIL_VT_STRING_CLASS:
        if (data.vt == UTIL_VT_STRING) {
            *this = data.pszVal;
        } else {
            TString text;
            value.GetString(text);
            *this = text.c_str();
        }
        break;
    default:
        m_type = NVDT_NONE;
        m_actualType = NVDT_NONE;
        m_actualKnown = true;
        m_long = 0;
        m_double = 0.0;
        m_pString[0] = '\0';
        m_length = 0;
        break;
    }
    return *this;
}

NodeVariantData::operator Variant() const {
    switch (m_type) {
    case NVDT_LONG:
        return Variant(static_cast<long>(m_long));
    case NVDT_DOUBLE:
        return Variant(m_double);
    case NVDT_STRING:
        return Variant(static_cast<const char*>(m_pString));
    default:
        return Variant();
    }
}

NodeVariantData::operator int() const {
    return GetLong();
}
NodeVariantData::operator long() const {
    return GetLong();
}
NodeVariantData::operator double() const {
    return GetDouble();
}
NodeVariantData::operator const char*() const {
    return GetText();
}

std::int32_t NodeVariantData::GetLong() const {
    switch (m_type) {
    case NVDT_LONG:
        return m_long;
    case NVDT_DOUBLE:
        return SaturateToLong(m_double);
    case NVDT_STRING:
        return SaturateToLong(std::strtod(m_pString, nullptr));
    default:
        return 0;
    }
}

double NodeVariantData::GetDouble() const {
    switch (m_type) {
    case NVDT_LONG:
        return m_long;
    case NVDT_DOUBLE:
        return m_double;
    case NVDT_STRING:
        return std::strtod(m_pString, nullptr);
    default:
        return 0.0;
    }
}

const char* NodeVariantData::GetText() const {
    switch (m_type) {
    case NVDT_STRING:
        return m_pString;
    case NVDT_LONG:
        std::snprintf(m_scratch, kScratchSize, "%d", static_cast<int>(m_long));
        return m_scratch;
    case NVDT_DOUBLE:
        std::snprintf(m_scratch, kScratchSize, "%g", m_double);
        return m_scratch;
    default:
        m_scratch[0] = '\0';
        return m_scratch;
    }
}

NodeVariantDataType NodeVariantData::GetActualStoredDataType() const {
    if (m_actualKnown)
        return m_actualType;
    m_actualKnown = true;
    m_actualType = NVDT_STRING;
    if (m_type != NVDT_STRING) {
        m_actualType = m_type;
        return m_actualType;
    }
    if (m_length == 0)
        return m_actualType;
    for (std::uint32_t i = 0; i < m_length; ++i) {
        if (!IsNumberCharacter(m_pString[i]))
            return m_actualType;
    }
    char* end = nullptr;
    const double value = std::strtod(m_pString, &end);
    if (end != m_pString + m_length)
        return m_actualType;
    m_actualType = value == std::trunc(value) ? NVDT_LONG : NVDT_DOUBLE;
    return m_actualType;
}

bool NodeVariantData::IsValidNumber() const {
    if (m_type == NVDT_LONG || m_type == NVDT_DOUBLE)
        return true;
    if (m_type != NVDT_STRING || m_length == 0)
        return false;
    char* end = nullptr;
    std::strtod(m_pString, &end);
    return end == m_pString + m_length;
}

bool NodeVariantData::IsValidIntNumber() const {
    switch (m_type) {
    case NVDT_LONG:
        return true;
    case NVDT_DOUBLE:
        return m_double == std::trunc(m_double);
    case NVDT_STRING: {
        if (m_length == 0)
            return false;
        char* end = nullptr;
        const double value = std::strtod(m_pString, &end);
        return end == m_pString + m_length && value == std::trunc(value);
    }
    default:
        return false;
    }
}

namespace {

inline int KindOf(const NodeVariantData& left, const NodeVariantData& right) {
    return kOperationTable[left.GetActualStoredDataType()][right.GetActualStoredDataType()];
}

} // namespace

bool NodeVariantData::AppendTaking(NodeVariantData& left, const NodeVariantData& right) {
    if (&left == this || &right == this || &right == &left || left.HasError() || right.HasError() ||
        left.m_type != NVDT_STRING || left.m_pString == left.m_inline ||
        KindOf(left, right) != kTextOp)
        return false;
    const char* rightText = right.GetText();
    const std::size_t rightLength = std::strlen(rightText);
    const std::size_t length = std::size_t(left.m_length) + rightLength;
    if (length + 1 >= UINT32_MAX) {
        SetOutOfMemory();
        return true;
    }
    if (length + 1 > left.m_capacity) {
        // Doubling: a chain of n appends copies each character a bounded number of times.
        std::size_t capacity = std::size_t(left.m_capacity) * 2;
        if (capacity < length + 1 || capacity >= UINT32_MAX)
            capacity = length + 1;
        char* block = Detail::ShouldFailAllocation() ? nullptr : new (std::nothrow) char[capacity];
        if (block == nullptr) {
            SetOutOfMemory();
            return true;
        }
        std::memcpy(block, left.m_pString, left.m_length);
        delete[] left.m_pString;
        left.m_pString = block;
        left.m_capacity = static_cast<std::uint32_t>(capacity);
    }
    std::memcpy(left.m_pString + left.m_length, rightText, rightLength + 1);
    ReleaseHeap();
    m_pString = left.m_pString;
    m_capacity = left.m_capacity;
    m_length = static_cast<std::uint32_t>(length);
    m_type = NVDT_STRING;
    m_status = PNS_SUCCESS;
    m_actualKnown = false;
    m_long = 0;
    m_double = 0.0;
    left.m_pString = left.m_inline;
    left.m_capacity = kInlineSize;
    left.m_inline[0] = '\0';
    left.m_length = 0;
    left.m_type = NVDT_NONE;
    left.m_actualKnown = false;
    return true;
}

NodeVariantData NodeVariantData::TextOperation(const NodeVariantData& right,
                                               const char* word) const {
    NodeVariantData result;
    // GetText of a number writes into that value's scratch area; the two sides are distinct
    // objects unless right is *this, in which case the same text serves both.
    const char* leftText = GetText();
    const char* rightText = &right == this ? leftText : right.GetText();
    result.SetText(leftText, word, rightText, PNS_TEXT_OPERATION);
    return result;
}

NodeVariantData NodeVariantData::operator+(const NodeVariantData& right) const {
    if (HasError())
        return *this;
    if (right.HasError())
        return right;
    switch (KindOf(*this, right)) {
    case kLongOp:
        return NodeVariantData(
            NodeRules::LongArithmetic(NodeRules::kAddition, GetLong(), right.GetLong()));
    case kDoubleOp:
        return NodeVariantData(
            NodeRules::DoubleArithmetic(NodeRules::kAddition, GetDouble(), right.GetDouble()));
    case kTextOp: {
        NodeVariantData result;
        const char* leftText = GetText();
        const char* rightText = &right == this ? leftText : right.GetText();
        result.SetText(leftText, rightText);
        return result;
    }
    default:
        return NodeVariantData();
    }
}

NodeVariantData NodeVariantData::operator-(const NodeVariantData& right) const {
    if (HasError())
        return *this;
    if (right.HasError())
        return right;
    switch (KindOf(*this, right)) {
    case kLongOp:
        return NodeVariantData(
            NodeRules::LongArithmetic(NodeRules::kSubtraction, GetLong(), right.GetLong()));
    case kDoubleOp:
        return NodeVariantData(
            NodeRules::DoubleArithmetic(NodeRules::kSubtraction, GetDouble(), right.GetDouble()));
    case kTextOp:
        return TextOperation(right, " SUBTRACT ");
    default:
        return NodeVariantData();
    }
}

NodeVariantData NodeVariantData::operator*(const NodeVariantData& right) const {
    if (HasError())
        return *this;
    if (right.HasError())
        return right;
    switch (KindOf(*this, right)) {
    case kLongOp:
        return NodeVariantData(
            NodeRules::LongArithmetic(NodeRules::kMultiplication, GetLong(), right.GetLong()));
    case kDoubleOp:
        return NodeVariantData(NodeRules::DoubleArithmetic(NodeRules::kMultiplication, GetDouble(),
                                                           right.GetDouble()));
    case kTextOp:
        return TextOperation(right, " MULTIPLY ");
    default:
        return NodeVariantData();
    }
}

NodeVariantData NodeVariantData::operator/(const NodeVariantData& right) const {
    if (HasError())
        return *this;
    if (right.HasError())
        return right;
    switch (KindOf(*this, right)) {
    case kLongOp:
        return NodeVariantData(
            NodeRules::LongArithmetic(NodeRules::kDivision, GetLong(), right.GetLong()));
    case kDoubleOp:
        return NodeVariantData(
            NodeRules::DoubleArithmetic(NodeRules::kDivision, GetDouble(), right.GetDouble()));
    case kTextOp:
        return TextOperation(right, " DIVIDE ");
    default:
        return NodeVariantData();
    }
}

NodeVariantData NodeVariantData::operator-() const {
    if (HasError())
        return *this;
    switch (GetActualStoredDataType()) {
    case NVDT_NONE:
    case NVDT_LONG:
        return NodeVariantData(NodeRules::NegateLong(GetLong()));
    case NVDT_DOUBLE:
        return NodeVariantData(-GetDouble());
    case NVDT_STRING: {
        NodeVariantData result;
        result.SetText(" UNARYMINUS ", GetText(), "", PNS_TEXT_OPERATION);
        return result;
    }
    default:
        return NodeVariantData();
    }
}

int NodeVariantData::compare(const NodeVariantData& other, ParseNodeStatus& status) const {
    if (HasError() || other.HasError()) {
        status = HasError() ? m_status : other.m_status;
        return 0;
    }
    status = PNS_SUCCESS;
    switch (KindOf(*this, other)) {
    case kLongOp:
        return NodeRules::LongOrder(GetLong(), other.GetLong());
    case kDoubleOp:
        return NodeRules::DoubleOrder(GetDouble(), other.GetDouble());
    case kTextOp: {
        const char* leftText = GetText();
        if (&other == this)
            return 0;
        return std::strcmp(leftText, other.GetText());
    }
    default:
        return 0;
    }
}

NodeVariantData NodeVariantData::Compared(const NodeVariantData& right, int kind) const {
    if (HasError())
        return *this;
    if (right.HasError())
        return right;
    ParseNodeStatus status = PNS_SUCCESS;
    const int order = compare(right, status);
    return NodeVariantData(NodeRules::Holds(static_cast<CompareType>(kind), order) ? 1 : 0);
}

NodeVariantData NodeVariantData::operator<(const NodeVariantData& right) const {
    return Compared(right, CT_LESS);
}
NodeVariantData NodeVariantData::operator<=(const NodeVariantData& right) const {
    return Compared(right, CT_LESS_EQUAL);
}
NodeVariantData NodeVariantData::operator>(const NodeVariantData& right) const {
    return Compared(right, CT_GREATER);
}
NodeVariantData NodeVariantData::operator>=(const NodeVariantData& right) const {
    return Compared(right, CT_GREATER_EQUAL);
}
NodeVariantData NodeVariantData::operator==(const NodeVariantData& right) const {
    return Compared(right, CT_EQUAL);
}
NodeVariantData NodeVariantData::operator!=(const NodeVariantData& right) const {
    return Compared(right, CT_NOT_EQUAL);
}

NodeVariantData NodeVariantData::operator&(const NodeVariantData& right) const {
    if (HasError())
        return *this;
    if (right.HasError())
        return right;
    if (KindOf(*this, right) == kTextOp)
        return TextOperation(right, " AND ");
    return NodeVariantData(NodeRules::IsTrue(*this) && NodeRules::IsTrue(right) ? 1 : 0);
}

NodeVariantData NodeVariantData::operator||(const NodeVariantData& right) const {
    if (HasError())
        return *this;
    if (right.HasError())
        return right;
    if (KindOf(*this, right) == kTextOp)
        return TextOperation(right, " OR ");
    return NodeVariantData(NodeRules::IsTrue(*this) || NodeRules::IsTrue(right) ? 1 : 0);
}

} // namespace Util
