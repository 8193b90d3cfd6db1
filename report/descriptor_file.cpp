#include "report/descriptor_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>
#include <utility>

namespace report {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";

// The value of a hexadecimal digit; -1 for any other character.
int digitValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

class Parser {
public:
    Parser(std::string_view text, const std::string& name)
        : text_(text)
        , name_(name)
    {
    }

    DescriptorResult parse()
    {
        while (error_.empty() && skipBlanksAndComments() && at_ < text_.size()) {
            if (text_[at_] == ',')
                readComma();
            else
                readPairs();
        }
        if (error_.empty() && bytes_.empty())
            fail("expected a descriptor, found no bytes");
        if (!error_.empty())
            return DescriptorError{error_};
        return std::move(bytes_);
    }

private:
    // False after an error.
    bool skipBlanksAndComments()
    {
        for (;;) {
            at_ = std::min(text_.find_first_not_of(kBlanks, at_), text_.size());
            const std::string_view rest = text_.substr(at_);
            if (rest.starts_with('#') || rest.starts_with("//"))
                at_ = std::min(text_.find('\n', at_), text_.size());
            else if (!rest.starts_with("/*"))
                return true;
            else if (const size_t end = text_.find("*/", at_ + 2); end != text_.npos)
                at_ = end + 2;
            else
                return fail("expected */ after this /*, found the end of the text");
        }
    }

    void readComma()
    {
        if (!commaAllowed_) {
            failAtByte("two hexadecimal digits");
            return;
        }
        commaAllowed_ = false;
        ++at_;
    }

    // One byte after 0x, otherwise all pairs up to a character that is not a digit.
    void readPairs()
    {
        const std::string_view prefix = text_.substr(at_, 2);
        const bool prefixed = prefix == "0x" || prefix == "0X";
        if (prefixed)
            at_ += 2;
        do {
            if (!readPair())
                return;
        } while (!prefixed && startsWithDigit());
        if (startsWithDigit())
            failAtByte("the end of the byte after its two digits");
        commaAllowed_ = true;
    }

    bool readPair()
    {
        if (!startsWithDigit())
            return failAtByte("two hexadecimal digits");
        if (bytes_.size() == kMaxDescriptorSize)
            return fail("expected at most 65535 bytes, found more");
        const int high = digitValue(text_[at_++]);
        if (!startsWithDigit())
            return failAtByte("a second hexadecimal digit");
        bytes_.push_back(static_cast<uint8_t>(high << 4 | digitValue(text_[at_++])));
        return true;
    }

    bool startsWithDigit() const { return at_ < text_.size() && digitValue(text_[at_]) >= 0; }

    // These store an error at the current position and return false.

    bool failAtByte(const std::string& expected)
    {
        return fail("expected " + expected + ", found " + current());
    }

    bool fail(const std::string& what)
    {
        const std::string_view before = text_.substr(0, at_);
        const auto line = 1 + std::count(before.begin(), before.end(), '\n');
        const size_t lineBegin = before.rfind('\n') + 1; // npos + 1 is 0
        error_ = name_ + ':' + std::to_string(line) + ':' + std::to_string(at_ - lineBegin + 1)
            + ": " + what;
        return false;
    }

    std::string current() const
    {
        if (at_ == text_.size())
            return "the end of the text";
        const char c = text_[at_];
        if (kBlanks.find(c) != kBlanks.npos)
            return c == '\n' || c == '\r' ? "the end of the line" : "a blank";
        if (c > ' ' && c < '\x7f')
            return std::string("'") + c + "'";
        std::array<char, 16> code{};
        std::snprintf(code.data(), code.size(), "byte 0x%02x", unsigned{static_cast<uint8_t>(c)});
        return code.data();
    }

    const std::string_view text_;
    const std::string& name_;
    size_t at_ = 0;
    bool commaAllowed_ = false; // after a byte, unless a comma follows that byte already
    DescriptorBytes bytes_;
    std::string error_;
};

struct FileClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

} // namespace

DescriptorResult parseDescriptor(std::string_view text, const std::string& name)
{
    return Parser(text, name).parse();
}

DescriptorResult readDescriptorFile(const std::filesystem::path& path)
{
    const auto cannotRead = [&](int error) {
        return DescriptorError{path.string() + ": " + std::generic_category().message(error)};
    };
    const std::unique_ptr<std::FILE, FileClose> file(std::fopen(path.c_str(), "rbe"));
    if (!file)
        return cannotRead(errno);
    std::string text;
    std::array<char, 4096> buffer;
    while (const size_t size = std::fread(buffer.data(), 1, buffer.size(), file.get())) {
        text.append(buffer.data(), size);
        if (text.size() > kMaxFileSize)
            return cannotRead(EFBIG);
    }
    if (std::ferror(file.get()))
        return cannotRead(errno);
    return parseDescriptor(text, path.string());
}

} // namespace report
