#include "tools/ctl/check/person.h"

#include "tools/ctl/cli/output.h"

namespace ctl {

Person::Person(InputLines& lines, std::chrono::seconds limit)
    : lines_(lines)
    , limit_(limit)
{
}

void Person::begin(Action action)
{
    question_ = false;
    prompt(std::string(nameOf(action).request) + " (" + std::to_string(limit_.count())
        + " s; type n and Enter if it cannot be done)");
}

void Person::ask(const std::string& question)
{
    question_ = true;
    prompt(question + " [Y/n/s; s: leave it out]");
}

void Person::prompt(const std::string& text)
{
    lines_.discard(); // typed before
    state_ = State::kBusy;
    Output::err().line(Output::err().styled(Style::kStrong, text));
}

Operator::State Person::state()
{
    while (const auto answer = lines_.take())
        if (state_ == State::kBusy)
            take(*answer);
    if (state_ == State::kBusy && lines_.ended())
        state_ = State::kDeclined;
    return state_;
}

void Person::take(const std::string& answer)
{
    const char letter = answer.empty() ? 'y' : answer.front();
    if (letter == 's' || letter == 'S')
        state_ = State::kDeclined;
    else if (letter == 'n' || letter == 'N')
        state_ = question_ ? State::kFailed : State::kDeclined;
    else
        state_ = State::kDone;
}

std::string Person::reason() const
{
    return "The person at the terminal says that it cannot be done.";
}

std::string Nobody::reason() const
{
    return "Nobody can press anything: standard input is no terminal, and there is neither "
           "--press-command nor --recording.";
}

} // namespace ctl
