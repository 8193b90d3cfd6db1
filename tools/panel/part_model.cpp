#include "tools/panel/part_model.h"

#include "tools/panel/log_entry.h"

#include <algorithm>

namespace panel {
namespace {

QString nameOf(const QJsonObject& part)
{
    return part[QLatin1String("name")].toString();
}

} // namespace

PartModel::PartModel(
    const QList<QByteArray>& texts, const QList<QByteArray>& flags, QObject* parent)
    : QAbstractListModel(parent)
    , keys_(texts + flags)
    , texts_(texts.size())
{
}

void PartModel::setParts(const QJsonArray& parts)
{
    std::vector<QJsonObject> objects;
    for (const auto& part : parts)
        if (!nameOf(part.toObject()).isEmpty())
            objects.push_back(part.toObject());
    if (!hasSameNames(objects)) {
        beginResetModel();
        parts_ = std::move(objects);
        endResetModel();
        return;
    }
    for (size_t i = 0; i < objects.size(); ++i) {
        if (parts_[i] == objects[i])
            continue;
        parts_[i] = objects[i];
        const QModelIndex changed = index(static_cast<int>(i));
        Q_EMIT dataChanged(changed, changed);
    }
}

void PartModel::set(const QString& name, const QString& key, const QJsonValue& value)
{
    for (size_t i = 0; i < parts_.size(); ++i) {
        if (nameOf(parts_[i]) != name || parts_[i][key] == value)
            continue;
        parts_[i][key] = value;
        const QModelIndex changed = index(static_cast<int>(i));
        Q_EMIT dataChanged(changed, changed);
    }
}

QJsonValue PartModel::value(const QString& name, const QString& key) const
{
    const auto found = std::find_if(parts_.begin(), parts_.end(),
        [&](const QJsonObject& part) { return nameOf(part) == name; });
    return found == parts_.end() ? QJsonValue() : found->value(key);
}

int PartModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(parts_.size());
}

QVariant PartModel::data(const QModelIndex& index, int role) const
{
    const int key = role - Qt::UserRole;
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || key < 0 || key >= keys_.size())
        return {};
    const QJsonValue value
        = parts_[static_cast<size_t>(index.row())][QString::fromLatin1(keys_[key])];
    if (key >= texts_)
        return value.toBool();
    return shortened(oneLine(value.toString()), kMaxText);
}

QHash<int, QByteArray> PartModel::roleNames() const
{
    QHash<int, QByteArray> names;
    for (int key = 0; key < keys_.size(); ++key)
        names[Qt::UserRole + key] = keys_[key];
    return names;
}

bool PartModel::hasSameNames(const std::vector<QJsonObject>& parts) const
{
    return std::equal(parts.begin(), parts.end(), parts_.begin(), parts_.end(),
        [](const QJsonObject& a, const QJsonObject& b) { return nameOf(a) == nameOf(b); });
}

} // namespace panel
