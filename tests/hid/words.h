// Lets a table row describe what happens to a telephony device as one line of words.
#pragma once

#include "tests/support/device_file.h"

#include <sstream>
#include <string>

// Performs the words one after another. A word is an operation of `device` ("ring", "offhook",
// "hangup", "mute", "unmute") or an input report in hexadecimal, which `handleReport` gets.
template <typename Device, typename HandleReport>
void perform(Device& device, const std::string& words, HandleReport handleReport)
{
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
        if (word == "ring")
            device.Ring();
        else if (word == "offhook")
            device.OffHook();
        else if (word == "hangup")
            device.HangUp();
        else if (word == "mute")
            device.Mute();
        else if (word == "unmute")
            device.Unmute();
        else
            handleReport(test::bytesFromHex(word));
    }
}
