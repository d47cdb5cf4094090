#include "docx/zip_package.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cstdio>
#include <functional>
#include <sys/stat.h>
#include <zip.h>

namespace {

zip_t* archiveOf(void* p)
{
    return static_cast<zip_t*>(p);
}

// A part name must stay inside the package: relative, no "..", no drive or backslash tricks.
bool isSafeName(const QString& name)
{
    if (name.isEmpty() || name.startsWith(QLatin1Char('/')) || name.contains(QLatin1Char('\\')) ||
        name.contains(QLatin1Char(':')) || name.contains(QChar(0)))
        return false;
    const QStringList parts = name.split(QLatin1Char('/'));
    for (const QString& part : parts) {
        if (part == QLatin1String(".."))
            return false;
    }
    return true;
}

} // namespace

KZipPackage::~KZipPackage()
{
    if (m_archive)
        zip_discard(archiveOf(m_archive));
}

bool KZipPackage::open(const QString& path, const KZipLimits& limits)
{
    m_limits = limits;
    int code = 0;
    zip_t* archive = zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY | ZIP_CHECKCONS, &code);
    if (!archive) {
        zip_error_t error;
        zip_error_init_with_code(&error, code);
        m_error = QStringLiteral("not a readable zip archive (%1)")
                      .arg(QString::fromUtf8(zip_error_strerror(&error)));
        zip_error_fini(&error);
        return false;
    }
    m_archive = archive;
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    if (count > m_limits.maxEntries) {
        m_error = QStringLiteral("too many entries (%1)").arg(count);
        return false;
    }
    for (zip_int64_t i = 0; i < count; ++i) {
        const char* raw = zip_get_name(archive, zip_uint64_t(i), ZIP_FL_ENC_GUESS);
        const QString name = raw ? QString::fromUtf8(raw) : QString();
        if (!isSafeName(name)) {
            m_error = QStringLiteral("entry name outside the package: '%1'").arg(name);
            return false;
        }
        if (m_index.contains(name)) {
            m_error = QStringLiteral("duplicate entry '%1'").arg(name);
            return false;
        }
        m_index.insert(name, i);
        m_names << name;
    }
    return true;
}

bool KZipPackage::read(const QString& name, QByteArray& data)
{
    data.clear();
    const auto it = m_index.constFind(name);
    if (it == m_index.constEnd()) {
        m_error = QStringLiteral("missing part '%1'").arg(name);
        return false;
    }
    zip_t* archive = archiveOf(m_archive);
    zip_stat_t st;
    zip_stat_init(&st);
    if (zip_stat_index(archive, zip_uint64_t(*it), 0, &st) == 0 && (st.valid & ZIP_STAT_SIZE) &&
        qint64(st.size) > m_limits.maxEntryBytes) {
        m_error = QStringLiteral("part '%1' is too large when expanded").arg(name);
        return false;
    }
    zip_file_t* file = zip_fopen_index(archive, zip_uint64_t(*it), 0);
    if (!file) {
        m_error =
            QStringLiteral("cannot open part '%1': %2").arg(name, QString::fromUtf8(zip_strerror(archive)));
        return false;
    }
    // The header's size can lie, so the limits are checked on the bytes actually inflated.
    char buffer[65536];
    bool ok = true;
    for (;;) {
        const zip_int64_t n = zip_fread(file, buffer, sizeof buffer);
        if (n < 0) {
            m_error =
                QStringLiteral("damaged part '%1': %2").arg(name, QString::fromUtf8(zip_file_strerror(file)));
            ok = false;
            break;
        }
        if (n == 0)
            break;
        m_totalRead += n;
        if (data.size() + n > m_limits.maxEntryBytes || m_totalRead > m_limits.maxTotalBytes) {
            m_error = QStringLiteral("part '%1' is too large when expanded").arg(name);
            ok = false;
            break;
        }
        data.append(buffer, int(n));
    }
    zip_fclose(file);
    if (!ok)
        data.clear();
    return ok;
}

bool KZipPackage::writeCopy(const QString& path, const QMap<QString, QByteArray>& replaced)
{
    int code = 0;
    zip_t* out = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (!out) {
        m_error = QStringLiteral("cannot create '%1'").arg(path);
        return false;
    }
    zip_t* in = archiveOf(m_archive);
    for (const QString& name : m_names) {
        zip_source_t* source = nullptr;
        const auto r = replaced.constFind(name);
        if (r != replaced.constEnd()) {
            source = zip_source_buffer(out, r->constData(), zip_uint64_t(r->size()), 0);
        } else {
            // Start 0, length -1, no flags: libzip copies the stored (compressed) data as it is.
            source = zip_source_zip(out, in, zip_uint64_t(m_index.value(name)), 0, 0, -1);
        }
        if (!source || zip_file_add(out, name.toUtf8().constData(), source, ZIP_FL_ENC_UTF_8) < 0) {
            if (source)
                zip_source_free(source);
            m_error =
                QStringLiteral("cannot write entry '%1': %2").arg(name, QString::fromUtf8(zip_strerror(out)));
            zip_discard(out);
            return false;
        }
    }
    if (zip_close(out) < 0) {
        m_error = QStringLiteral("cannot write '%1': %2").arg(path, QString::fromUtf8(zip_strerror(out)));
        zip_discard(out);
        return false;
    }
    return true;
}

bool writeNewPackage(const QString& path, const QList<QPair<QString, QByteArray>>& entries, QString& error)
{
    int code = 0;
    zip_t* out = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (!out) {
        error = QStringLiteral("cannot create '%1'").arg(path);
        return false;
    }
    for (const auto& entry : entries) {
        zip_source_t* source =
            zip_source_buffer(out, entry.second.constData(), zip_uint64_t(entry.second.size()), 0);
        if (!source || zip_file_add(out, entry.first.toUtf8().constData(), source, ZIP_FL_ENC_UTF_8) < 0) {
            if (source)
                zip_source_free(source);
            error = QStringLiteral("cannot write entry '%1'").arg(entry.first);
            zip_discard(out);
            return false;
        }
    }
    if (zip_close(out) < 0) {
        error = QStringLiteral("cannot write '%1': %2").arg(path, QString::fromUtf8(zip_strerror(out)));
        zip_discard(out);
        return false;
    }
    return true;
}

bool commitWrite(const QString& path, const std::function<bool(const QString& tmp)>& write, QString& error)
{
    const QFileInfo target(path);
    QTemporaryFile reserve(target.absolutePath() + QStringLiteral("/.") + target.fileName() +
                           QStringLiteral(".XXXXXX"));
    if (!reserve.open()) {
        error = QStringLiteral("cannot create a temporary file next to '%1'").arg(path);
        return false;
    }
    const QString tmp = reserve.fileName();
    reserve.close();
    if (!write(tmp)) {
        QFile::remove(tmp);
        return false;
    }
    reserve.setAutoRemove(false);
    // A temporary file is private to its owner; the document gets the usual permissions.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::chmod(QFile::encodeName(tmp).constData(), 0666 & ~mask);
    if (::rename(QFile::encodeName(tmp).constData(), QFile::encodeName(path).constData()) != 0) {
        QFile::remove(tmp);
        error = QStringLiteral("cannot rename the output into '%1'").arg(path);
        return false;
    }
    return true;
}
