#pragma once

#include "network/events/FixedText.h"

#include <QDebug>
#include <QtEndian>

#include <bit>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <type_traits>

namespace NetworkCompanion {

/// One field of an event: its name in log lines and its member.
template <typename Owner, typename Value>
struct Field {
    const char* name;
    Value Owner::*member;
};

/// Size, encoding, decoding and equality of each kind of field. Numbers are big-endian. The caller
/// has checked that the bytes hold all fields.
namespace Wire {

template <typename Value>
constexpr int size() {
    if constexpr (std::is_same_v<Value, bool>)
        return 1;
    else if constexpr (std::is_same_v<Value, double>)
        return 8;
    else if constexpr (std::is_enum_v<Value> || std::is_integral_v<Value>) {
        static_assert(sizeof(Value) == 4, "integers and enumerations travel as 32 bits");
        return 4;
    } else if constexpr (requires { Value::kSize; })
        return static_cast<int>(Value::kSize);
    else
        return Value::wireSize(); // an event inside an event
}

template <typename Value>
char* write(char* out, const Value& value) {
    if constexpr (std::is_same_v<Value, bool>)
        *out = value ? 1 : 0;
    else if constexpr (std::is_same_v<Value, double>)
        qToBigEndian(std::bit_cast<std::uint64_t>(value), out);
    else if constexpr (std::is_enum_v<Value> || std::is_integral_v<Value>)
        qToBigEndian(static_cast<std::uint32_t>(value), out);
    else if constexpr (requires { Value::kSize; })
        std::memcpy(out, value.data(), Value::kSize);
    else
        value.writeFields(out);
    return out + size<Value>();
}

template <typename Value>
const char* read(const char* in, Value& value) {
    if constexpr (std::is_same_v<Value, bool>)
        value = *in != 0;
    else if constexpr (std::is_same_v<Value, double>)
        value = std::bit_cast<double>(qFromBigEndian<std::uint64_t>(in));
    else if constexpr (std::is_enum_v<Value> || std::is_integral_v<Value>)
        value = static_cast<Value>(qFromBigEndian<std::int32_t>(in));
    else if constexpr (requires { Value::kSize; })
        std::memcpy(value.data(), in, Value::kSize);
    else
        value.readFields(in);
    return in + size<Value>();
}

template <typename Value>
bool same(const Value& left, const Value& right) {
    if constexpr (std::is_same_v<Value, double>)
        return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
    else
        return left == right;
}

template <typename Value>
void print(QDebug& debug, const Value& value) {
    if constexpr (requires { Value::kSize; })
        debug << value.toString();
    else
        debug << value;
}

} // namespace Wire

/// The operations on all fields of a class, in wire order. The class lists them as
/// `static constexpr auto fields() { return std::tuple{Field{"name", &X::name_}, ...}; }`.
struct FieldList {
    template <typename... Owner, typename... Value>
    static constexpr int wireSize(const std::tuple<Field<Owner, Value>...>&) {
        return (0 + ... + Wire::size<Value>());
    }

    template <typename Owner, typename Fields>
    static char* write(const Owner& owner, const Fields& fields, char* out) {
        std::apply(
            [&](const auto&... field) { ((out = Wire::write(out, owner.*field.member)), ...); },
            fields);
        return out;
    }

    template <typename Owner, typename Fields>
    static const char* read(Owner& owner, const Fields& fields, const char* in) {
        std::apply([&](const auto&... field) { ((in = Wire::read(in, owner.*field.member)), ...); },
                   fields);
        return in;
    }

    template <typename Owner, typename Fields>
    static bool same(const Owner& left, const Owner& right, const Fields& fields) {
        return std::apply(
            [&](const auto&... field) {
                return (Wire::same(left.*field.member, right.*field.member) && ...);
            },
            fields);
    }

    template <typename Owner, typename Fields>
    static void print(QDebug& debug, const Owner& owner, const Fields& fields) {
        const char* separator = "";
        std::apply(
            [&](const auto&... field) {
                ((debug << separator << field.name << '=', Wire::print(debug, owner.*field.member),
                  separator = ", "),
                 ...);
            },
            fields);
    }
};

} // namespace NetworkCompanion
