#pragma once
// A .docx package read into memory through libzip, with limits that keep a hostile
// archive (zip bomb, names outside the package, duplicates) from doing harm.

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>

struct KZipLimits {
    qint64 maxEntryBytes = 64ll << 20;  // expanded size of one part
    qint64 maxTotalBytes = 256ll << 20; // expanded size of all parts read
    int maxEntries = 10000;
};

class KZipPackage {
public:
    KZipPackage() = default;
    ~KZipPackage();
    KZipPackage(const KZipPackage&) = delete;
    KZipPackage& operator=(const KZipPackage&) = delete;

    // Opens the archive and checks every entry name; false with error() set when it is unusable.
    bool open(const QString& path, const KZipLimits& limits = {});
    // The expanded bytes of one entry, checked against the limits while inflating.
    bool read(const QString& name, QByteArray& data);
    bool contains(const QString& name) const { return m_index.contains(name); }
    const QStringList& names() const { return m_names; }
    QString error() const { return m_error; }

    // Writes a copy of this archive to path: entries in `replaced` get the new bytes,
    // every other entry is copied as stored (compressed data unchanged).
    bool writeCopy(const QString& path, const QMap<QString, QByteArray>& replaced);

private:
    void* m_archive = nullptr;
    KZipLimits m_limits;
    qint64 m_totalRead = 0;
    QStringList m_names;
    QMap<QString, qint64> m_index;
    QString m_error;
};

// Writes a new archive holding the given entries in order, deflated.
bool writeNewPackage(const QString& path, const QList<QPair<QString, QByteArray>>& entries, QString& error);

// Writes through a temporary file next to `path` and renames it into place.
bool commitWrite(const QString& path, const std::function<bool(const QString& tmp)>& write, QString& error);
