#include "sim/bench/json_line.h"

#include <json/writer.h>

namespace sim {

std::string jsonLine(const Json::Value& value)
{
    static const Json::StreamWriterBuilder builder = [] {
        Json::StreamWriterBuilder settings;
        settings["indentation"] = "";
        settings["precision"] = 6;
        settings["precisionType"] = "decimal";
        return settings;
    }();
    return Json::writeString(builder, value);
}

} // namespace sim
