// Lets a table row describe what happens to a telephony device as one line of words.
#pragma once

#include "tests/support/device_file.h"

#include <map>
#include <sstream>
#include <string>

// Performs the words one after another. A word is an operation of `device` ("ring", "offhook",
// "hangup", "mute", "unmute") or an input report in hexadecimal, which `handleReport` gets.
template <typename Device, typename HandleReport>
void perform(Device& device, const std::string& words, HandleReport handleReport)
{
    const std::map<std::string, void (Device::*)()> operations
        = {{"ring", &Device::Ring}, {"offhook", &Device::OffHook}, {"hangup", &Device::HangUp},
            {"mute", &Device::Mute}, {"unmute", &Device::Unmute}};
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
        if (const auto found = operations.find(word); found != operations.end())
            (device.*found->second)();
        else
            handleReport(test::bytesFromHex(word));
    }
}
