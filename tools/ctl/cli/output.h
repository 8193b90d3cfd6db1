// Standard output and standard error of kelprobectl.
#pragma once

#include <string>
#include <string_view>

namespace Json {
class Value;
}

namespace ctl {

// A JSON document in one line, without a line end.
[[nodiscard]] std::string jsonLineText(const Json::Value& value);

enum class Style { kPlain, kStrong, kGood, kBad, kFaint };

// Prints whole lines. Each goes to the operating system at once, so that a reader at the other end
// of a pipe has it. Any thread may use an object; lines are not mixed. When a stop signal has
// arrived, what nobody reads is dropped, so that the command can end.
class Output {
public:
    // The standard streams. Colours are on if the stream is a terminal, NO_COLOR is unset or empty
    // and TERM is not "dumb".
    static Output& out();
    static Output& err();

    // Prints the text and a line end. Throws Failure if standard output is closed or full; standard
    // error is written as well as it can be.
    void line(std::string_view text);

    // Prints a JSON document, indented by two blanks, or one line of JSON.
    void json(const Json::Value& value);
    void jsonLine(const Json::Value& value);

    // The text between the control sequences of the style, if colours are on.
    [[nodiscard]] std::string styled(Style style, std::string_view text) const;

    // A line that the next line replaces, for progress, cut to the width of the terminal. Not
    // printed if the stream is no terminal or TERM is "dumb".
    void progress(std::string_view text);

private:
    explicit Output(int fd);
    void write(std::string_view text);

    const int fd_;
    const bool terminal_; // one that obeys control sequences
    const bool colours_;
    bool hasProgress_ = false;
};

} // namespace ctl
