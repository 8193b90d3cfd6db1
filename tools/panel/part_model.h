// The buttons, lamps or faults of a device.
#pragma once

#include <QAbstractListModel>
#include <QJsonArray>
#include <QJsonObject>

#include <vector>

namespace panel {

// Each part is a JSON object from the bench with a "name". The roles are keys of the objects.
class PartModel : public QAbstractListModel {
    Q_OBJECT
public:
    explicit PartModel(const QList<QByteArray>& keys, QObject* parent = nullptr);

    // Takes over the parts. If they have the same names as before, only what differs changes: a
    // button that is being pressed must not be replaced in the window.
    void setParts(const QJsonArray& parts);

    // Sets one value of the part. Ignores names that no part has.
    void set(const QString& name, const QString& key, const QJsonValue& value);

    [[nodiscard]] QJsonValue value(const QString& name, const QString& key) const;
    [[nodiscard]] const std::vector<QJsonObject>& parts() const { return parts_; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    [[nodiscard]] bool hasSameNames(const std::vector<QJsonObject>& parts) const;

    const QList<QByteArray> keys_;
    std::vector<QJsonObject> parts_;
};

} // namespace panel
