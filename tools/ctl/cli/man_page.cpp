#include "tools/ctl/cli/command_model.h"

#include <algorithm>

namespace ctl {
namespace {

// The text with what is special to troff escaped.
std::string escaped(std::string_view text)
{
    std::string result;
    bool lineBegins = true;
    for (const char c : text) {
        if (lineBegins && (c == '.' || c == '\''))
            result += "\\&";
        if (c == '\\')
            result += "\\e";
        else if (c == '-')
            result += "\\-";
        else
            result += c;
        lineBegins = c == '\n';
    }
    return result;
}

std::string bold(std::string_view text)
{
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(std::string_view text)
{
    return "\\fI" + escaped(text) + "\\fR";
}

std::string positional(const OptionModel& argument)
{
    const std::string word = italic(argument.argument) + (argument.repeated ? "..." : "");
    return argument.required ? word : '[' + word + ']';
}

std::string optionHead(const OptionModel& option)
{
    std::string head;
    for (const std::string& name : option.names)
        head += (head.empty() ? "" : ", ") + bold(name);
    return option.argument.empty() ? head : head + ' ' + italic(option.argument);
}

std::string optionList(const std::vector<OptionModel>& options)
{
    std::string text;
    for (const OptionModel& option : options)
        text += ".TP\n" + (option.names.empty() ? positional(option) : optionHead(option)) + '\n'
            + escaped(option.description) + '\n';
    return text;
}

bool isHelp(const OptionModel& option)
{
    return std::find(option.names.begin(), option.names.end(), "--help") != option.names.end();
}

std::string commandSection(const CommandModel& command)
{
    std::string text = ".SS " + command.name + "\n" + bold("kelprobectl " + command.name);
    std::vector<OptionModel> options;
    std::remove_copy_if(
        command.options.begin(), command.options.end(), std::back_inserter(options), isHelp);
    if (!options.empty())
        text += " [" + italic("OPTION") + "...]";
    for (const OptionModel& argument : command.positionals)
        text += ' ' + positional(argument);
    text += "\n.PP\n" + escaped(command.description) + '\n';
    text += optionList(command.positionals) + optionList(options);
    if (!command.footer.empty())
        text += ".PP\n.nf\n" + escaped(command.footer) + "\n.fi\n";
    return text;
}

constexpr std::string_view kEnd = R"(.SH EXIT STATUS
.TP
.B 0
Fine.
.TP
.B 1
The device fell short: it does not do what it should.
.TP
.B 2
Wrong use: a mistake on the command line or in a file.
.TP
.B 3
No device, or no access to a device, file or stream.
.PP
.B kelprobectl trace
returns the status of the program that it runs.
.SH ENVIRONMENT
.TP
.B NO_COLOR
If set and not empty, no colours are used. They are used on terminals only.
.SH FILES
.TP
.I /usr/share/misc/usb.ids
Names of usage pages and usages. Without it they are shown as hexadecimal numbers.
.SH SEE ALSO
.BR kelprobe (1),
.BR kelprobe\-sim (1),
.BR lsusb (8),
.BR usbhid\-dump (8)
)";

} // namespace

std::string manPage(const CommandModel& program)
{
    std::string text = ".TH KELPROBECTL 1 \"\" \"Kelprobe " KELPROBE_VERSION
                       "\" \"User Commands\"\n"
                       ".SH NAME\nkelprobectl \\- shows, explains and checks the call controls of "
                       "USB HID devices\n.SH SYNOPSIS\n.B kelprobectl\n.I COMMAND\n[\\fIOPTION\\fR"
                       "...] [\\fIARGUMENT\\fR...]\n.SH DESCRIPTION\n"
        + escaped(program.description) + "\n.PP\nA " + italic("DEVICE")
        + " is given as its ids (\\fIvvvv:pppp\\fR, hexadecimal), as a line number of\n"
        + bold("kelprobectl list")
        + ", or as a path of hidapi. Without one the only telephony device is taken.\n";
    text += optionList(program.options) + ".SH COMMANDS\n";
    for (const CommandModel& command : program.commands)
        text += commandSection(command);
    return text + std::string(kEnd);
}

} // namespace ctl
