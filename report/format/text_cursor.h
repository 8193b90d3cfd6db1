// A position in a text that is being parsed. For the parsers of this folder.
#pragma once

#include "report/format/descriptor_file.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace report {

// Whether the text begins with a byte order mark of UTF-16.
[[nodiscard]] bool isUtf16(std::string_view text);

// Each reading function moves the position past what it has read, or throws a DescriptorError of
// the form "NAME:LINE:COLUMN: expected ..., found ...". Only the error takes time in proportion to
// the text before the position.
class TextCursor {
public:
    // Both must outlive the object. A byte order mark of UTF-8 is no part of the text. Throws if
    // the text is in UTF-16.
    TextCursor(std::string_view text, const std::string& name);

    [[nodiscard]] bool atEnd() const { return at_ == text_.size(); }
    [[nodiscard]] bool atLineEnd() const { return atEnd() || text_[at_] == '\n'; }
    [[nodiscard]] bool atHexDigit() const;
    [[nodiscard]] std::string_view rest() const { return text_.substr(at_); }
    [[nodiscard]] std::string_view restOfLine() const; // without the line end
    [[nodiscard]] size_t position() const { return at_; }

    void moveTo(size_t position) { at_ = position; }
    bool skip(std::string_view prefix); // true if the rest began with it

    // Blanks are space, tab, vertical tab, form feed and carriage return.
    void skipBlanks();
    void skipBlanksAndLineEnds();

    enum class Comments {
        kC,   // from // to the end of the line, and between /* and */
        kAll, // also from # to the end of the line
    };
    // Skips blanks, line ends and comments. Throws at a comment without an end.
    void skipComments(Comments kind);

    [[nodiscard]] uint8_t readHexPair(const char* expected = "two hexadecimal digits");

    // A number of digits of that base, 10 or 16. `expected` describes it in errors.
    [[nodiscard]] uint64_t readNumber(int base, uint64_t maximum, const std::string& expected);

    // Skips blanks and the line end.
    void readLineEnd();

    // Throws "expected `expected`, found" and the character at the position.
    [[noreturn]] void fail(const std::string& expected) const;
    // Throws `what` for the position.
    [[noreturn]] void failWith(const std::string& what) const;

private:
    [[nodiscard]] std::string current() const;

    const std::string_view text_;
    const std::string& name_;
    size_t at_ = 0;
};

} // namespace report
