#include "tools/ctl/explain/description_json.h"

#include "report/bytes.h"
#include "tools/ctl/explain/phrases.h"
#include "tools/ctl/usb/device_words.h"
#include "tools/text/printable.h"

#include <json/json.h>

namespace ctl {
namespace {

Json::Value unsignedNumber(uint64_t value)
{
    return Json::Value(Json::UInt64{value});
}

Json::Value stringList(const std::vector<std::string>& list)
{
    Json::Value json(Json::arrayValue);
    for (const std::string& text : list)
        json.append(text);
    return json;
}

Json::Value sourceJson(const Description& description)
{
    const DescriptorOrigin& origin = description.origin;
    Json::Value json;
    json["file"] = origin.device ? Json::Value() : Json::Value(origin.text);
    json["descriptor"] = origin.label.empty() ? Json::Value() : Json::Value(origin.label);
    json["device"] = origin.device ? deviceJson(*origin.device, description.names) : Json::Value();
    json["bytes"] = unsignedNumber(origin.bytes.size());
    json["remarks"] = stringList(description.remarks);
    return json;
}

Json::Value itemsJson(const Description& description)
{
    Json::Value list(Json::arrayValue);
    for (const report::AnnotatedItem& item : description.items) {
        Json::Value json;
        json["offset"] = unsignedNumber(item.item.offset);
        json["bytes"] = report::toHex(item.item.bytes, "");
        json["depth"] = unsignedNumber(item.depth);
        json["text"] = text::printable(item.text);
        list.append(json);
    }
    return list;
}

Json::Value usageJson(report::Usage usage, const report::UsageNames& names)
{
    Json::Value json;
    json["page"] = unsignedNumber(usage.page);
    json["id"] = unsignedNumber(usage.id);
    json["name"] = usageName(usage, names);
    return json;
}

Json::Value collectionsJson(const Description& description)
{
    Json::Value list(Json::arrayValue);
    for (const report::Collection& collection : description.layout.collections) {
        Json::Value json;
        json["offset"] = unsignedNumber(collection.offset);
        json["type"] = unsignedNumber(collection.type);
        const bool isNamed = collection.usage != report::Usage{};
        json["usage"] = isNamed ? usageJson(collection.usage, description.names) : Json::Value();
        const bool isTop = collection.parent == report::Collection::kNone;
        json["parent"] = isTop ? Json::Value() : unsignedNumber(collection.parent);
        list.append(json);
    }
    return list;
}

Json::Value usagesJson(const report::Field& field, const report::UsageNames& names)
{
    Json::Value list(Json::arrayValue);
    for (const report::UsageRange& range : field.usages) {
        Json::Value json = usageJson(range.minimum, names);
        if (range.isRange)
            json["maximum"] = unsignedNumber(range.maximum);
        list.append(json);
    }
    return list;
}

Json::Value fieldJson(const report::Field& field, const report::UsageNames& names)
{
    Json::Value json;
    json["offset"] = unsignedNumber(field.offset);
    json["bitOffset"] = unsignedNumber(field.bitOffset);
    json["size"] = unsignedNumber(field.size);
    json["count"] = unsignedNumber(field.count);
    json["constant"] = field.isConstant();
    json["array"] = !field.isVariable();
    json["relative"] = (field.flags & report::Field::kRelative) != 0;
    json["logicalMinimum"] = Json::Int64{field.logicalMinimum};
    json["logicalMaximum"] = Json::Int64{field.logicalMaximum};
    const bool isOutside = field.collection == report::Collection::kNone;
    json["collection"] = isOutside ? Json::Value() : unsignedNumber(field.collection);
    json["usages"] = usagesJson(field, names);
    return json;
}

Json::Value reportsJson(const Description& description)
{
    const report::Layout& layout = description.layout;
    Json::Value list(Json::arrayValue);
    for (const auto& [key, fields] : layout.reportFields) {
        Json::Value json;
        json["kind"] = report::kindName(key.kind);
        json["id"] = layout.usesReportIds ? Json::Value(unsignedNumber(key.id)) : Json::Value();
        json["bytes"] = unsignedNumber(layout.wireSize(key).value_or(0));
        Json::Value& fieldList = json["fields"] = Json::Value(Json::arrayValue);
        for (const size_t field : fields)
            fieldList.append(fieldJson(layout.fields[field], description.names));
        list.append(json);
    }
    return list;
}

Json::Value remarksJson(const std::vector<Remark>& remarks)
{
    Json::Value list(Json::arrayValue);
    for (const Remark& remark : remarks) {
        Json::Value json;
        json["word"] = remark.word;
        json["text"] = remark.text;
        list.append(json);
    }
    return list;
}

Json::Value problemsJson(const Description& description)
{
    Json::Value list(Json::arrayValue);
    for (const report::Problem& problem : description.layout.problems) {
        Json::Value json;
        json["offset"] = unsignedNumber(problem.offset);
        json["text"] = text::printable(problem.text);
        list.append(json);
    }
    return list;
}

} // namespace

Json::Value toJson(const ControlMap& map)
{
    Json::Value controls;
    for (const Control& control : kControls) {
        const ControlEntry& entry = map[control.id];
        Json::Value& json = controls[control.key];
        json["report"]
            = entry.report ? Json::Value(report::toHex(*entry.report, "")) : Json::Value();
        json["reason"] = entry.reason ? Json::Value(entry.reason->word) : Json::Value();
        json["text"] = entry.reason ? Json::Value(entry.reason->text) : Json::Value();
        json["furtherReasons"] = remarksJson(entry.furtherReasons);
        json["notes"] = remarksJson(entry.notes);
    }
    return controls;
}

Json::Value toJson(const Description& description)
{
    Json::Value json;
    json["source"] = sourceJson(description);
    json["items"] = itemsJson(description);
    json["collections"] = collectionsJson(description);
    json["reports"] = reportsJson(description);
    json["controls"] = toJson(description.controls);
    json["meeting"] = stringList(description.meeting);
    json["problems"] = problemsJson(description);
    return json;
}

} // namespace ctl
