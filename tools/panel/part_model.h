// The buttons, lamps or faults of a device.
#pragma once

#include <QAbstractListModel>
#include <QJsonArray>
#include <QJsonObject>

#include <vector>

namespace panel {

// Each part is a JSON object from the bench. The roles are keys of the objects. A value that is
// missing, or of another type, is an empty text or false; texts are one line and cut if very long.
class PartModel : public QAbstractListModel {
    Q_OBJECT
public:
    static constexpr int kMaxText = 100;

    // `texts` and `flags` are keys.
    PartModel(
        const QList<QByteArray>& texts, const QList<QByteArray>& flags, QObject* parent = nullptr);

    // Takes over the parts that have a name. If they have the same names as before, only what
    // differs changes: a button that is being pressed must not be replaced in the window.
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
    const int texts_; // so many keys are of texts, the others of flags
    std::vector<QJsonObject> parts_;
};

} // namespace panel
