#pragma once

#include <QObject>
#include <QString>

namespace quillbay {

class Defaults;

// The running total of bytes both cleanup tools have freed, across launches.
// UI thread only.
class SavedSpaceStore : public QObject
{
    Q_OBJECT

public:
    static constexpr auto defaultKey = "TotalBytesDeleted";

    SavedSpaceStore(Defaults& defaults, QString storageKey, QObject* parent = nullptr);

    qint64 totalBytes() const { return m_totalBytes; }

    // Adds a positive count, saturating at the 64-bit maximum. The total is written even
    // when it did not move (already saturated), so the stored value is always current.
    void add(qint64 bytes);
    void reset();

signals:
    void totalBytesChanged(qint64 totalBytes);

private:
    void store(qint64 total);

    Defaults& m_defaults;
    QString m_storageKey;
    qint64 m_totalBytes = 0;
};

} // namespace quillbay
