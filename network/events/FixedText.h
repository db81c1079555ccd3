#pragma once

#include <QByteArrayView>
#include <QString>
#include <QtGlobal>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace NetworkCompanion {

/// A string literal as a template argument.
template <std::size_t Size>
struct Literal {
    char text[Size]{};
    // NOLINTNEXTLINE(google-explicit-constructor): the template argument is written as a literal
    constexpr Literal(const char (&literal)[Size]) { std::copy_n(literal, Size, text); }
};

/// A text of Size bytes on the wire: UTF-8, padded with zero bytes. Label names it in log lines.
template <std::size_t Size, Literal Label>
class FixedText {
public:
    static constexpr std::size_t kSize = Size;

    FixedText() = default;
    /// A text without room for a terminator is logged and replaced by an empty one. Null is empty.
    explicit FixedText(const char* text) {
        const std::size_t length = text ? qstrnlen(text, Size) : 0;
        if (length == Size)
            qWarning("Size of %s is too large", Label.text);
        else
            std::memcpy(bytes_.data(), text ? text : "", length);
    }

    /// Ends at the first zero byte or at the end of the field. A letter that is cut there is left
    /// out, because its replacement would be longer and the text could not be sent back.
    QString toString() const { return QString::fromUtf8(text().chopped(cutBytes())); }
    QByteArrayView text() const {
        return QByteArrayView(bytes_.data(), qsizetype(qstrnlen(bytes_.data(), Size)));
    }

    const char* data() const { return bytes_.data(); }
    char* data() { return bytes_.data(); }

    friend bool operator==(const FixedText&, const FixedText&) = default;

private:
    /// The number of bytes of an incomplete letter at the end of the text.
    qsizetype cutBytes() const {
        const QByteArrayView utf8 = text();
        for (qsizetype count = 1; count <= std::min<qsizetype>(utf8.size(), 3); ++count) {
            const auto byte = static_cast<unsigned char>(utf8[utf8.size() - count]);
            if (byte < 0x80)
                break;
            if (byte >= 0xC0) { // the first byte of a letter says how many it has
                const qsizetype length = 2 + (byte >= 0xE0) + (byte >= 0xF0);
                return count < length ? count : 0;
            }
        }
        return 0;
    }

    std::array<char, Size> bytes_{};
};

using NameText = FixedText<256, "name">;
using MessageText = FixedText<256, "message">;
using ColorText = FixedText<8, "color">;

} // namespace NetworkCompanion
