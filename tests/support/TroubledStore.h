// SPDX-License-Identifier: MIT
#pragma once

#include "support/FakePixInsight.h"
#include "support/StoreFixture.h"

#include <functional>

#if defined(Q_OS_LINUX)
#include <csignal>

#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace kse {

/// A store whose save or restore meets real trouble.
struct TroubledStore : StoreFixture
{
    /// Makes the trouble called `name`, which comes with an edit and with an older backup. False if
    /// there is none of that name here, or if only root can make it.
    bool make(const QString& name)
    {
        edit("A/x", QStringLiteral("2"));
        write(source(), "<xsdt><i k=\"B\"/></xsdt>");
        bool made = false;
        const auto on = [&](const char* trouble, const std::function<bool()>& step) {
            made = made || (name == QLatin1String(trouble) && step());
        };
        on("closed", [&] { return !(store.loaded = false); });
        on("running", [&] { return write(path, "<xsdt></xsdt>") && m_pixInsight.start(); });
        on("changed", [&] { return write(path, "<xsdt></xsdt>"); });
        on("gone", [&] { return QFile::remove(path); });
        on("protected", [&] { return mark("Free") && mark("A/s"); });
        on("no policy", [&] { return mark("Free") && !(store.policy = nullptr); });
        on("no root", [&] { return !store.document.head.remove(0, 5).isEmpty(); });
        on("no character", [&] { return edit("A/s", QString(QChar(0xd800))); });
        on("no source", [&] { return QFile::remove(source()); });
        on("text", [&] { return write(source(), "text"); });
        makeOfSystem(on);
        return made;
    }

    /// The older backup.
    QString source() const { return path + QStringLiteral(".bak-old"); }

#if defined(Q_OS_LINUX)
    ~TroubledStore()
    {
        (void)!(getuid() == 0 && seteuid(0) == 0);
        umount(QFile::encodeName(m_mounted).constData());
        chmod(QFile::encodeName(m_folder).constData(), 0755);
    }

    /// Saves, or restores the older backup, under the size limit if that is the trouble.
    bool run(bool restore, QString* error, QString* backup, QString* remark)
    {
        rlimit before = {};
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit = {m_sizeLimit, before.rlim_max};
        std::signal(SIGXFSZ, SIG_IGN); // so that the limit is an error, like a full disk
        setrlimit(RLIMIT_FSIZE, &limit);
        const bool done = restore ? store.restoreBackup(source(), error, remark)
                                  : store.save(error, backup, remark);
        setrlimit(RLIMIT_FSIZE, &before);
        return done;
    }

private:
    template <typename On>
    void makeOfSystem(const On& on)
    {
        const auto size = static_cast<rlim_t>(QFileInfo(path).size());
        const QString longText(8000, u'x');
        on("folder denied", [&] { return deny(dir.path(), 0555); });
        on("folder unlisted", [&] { return deny(dir.path(), 0333); });
        on("real folder denied", [&] { return deny(moveBehindLink(), 0555); });
        on("no room for the backup", [&] { return (m_sizeLimit = size - 1) > 0; });
        // Found when the buffer is flushed, and by a write that is cut short.
        on("no room",
           [&] { return edit("A/s", QStringLiteral("longer")) && (m_sizeLimit = size) > 0; });
        on("room for a part",
           [&] { return edit("A/s", longText.repeated(9)) && (m_sizeLimit = 20'000) > 0; });
        on("mounted full", [&] { // two pages: the file takes one, and what replaces it two
            write(source(), fileBytes("<v k=\"b\" t=\"s\">" + longText.toLatin1() + "</v>"));
            const QByteArray bytes = contentOf(path);
            const QString folder = moveBehindLink();
            return edit("A/s", longText) && mountOn(folder, "tmpfs", 0, "size=8k") &&
                   write(folder + QStringLiteral("/file"), bytes);
        });
        on("mounted read-only", [&] { return mountReadOnly(dir.path()); });
        on("mounted read-only behind a link", [&] { return mountReadOnly(moveBehindLink()); });
        on("mounted alone", [&] {
            return mountOn(moveBehindLink() + QStringLiteral("/file"), nullptr, MS_BIND, nullptr);
        });
    }

    /// Gives `folder` that mode, which counts for root too, who becomes somebody else for it.
    bool deny(const QString& folder, mode_t mode)
    {
        constexpr uid_t nobody = 65534;
        bool done = true;
        for (const QString& owned : {dir.path(), folder, path}) {
            done = done && (getuid() != 0 ||
                            chown(QFile::encodeName(owned).constData(), nobody, nobody) == 0);
        }
        m_folder = folder;
        return done && chmod(QFile::encodeName(folder).constData(), mode) == 0 &&
               (getuid() != 0 || seteuid(nobody) == 0);
    }

    /// Moves the file to a folder of its own, which is returned, with a link in its place.
    QString moveBehindLink()
    {
        const QString folder = dir.filePath(QStringLiteral("real"));
        const QString file = folder + QStringLiteral("/file");
        require(QDir().mkdir(folder) && QFile::rename(path, file) && QFile::link(file, path), file);
        return folder;
    }

    bool mountReadOnly(const QString& folder)
    {
        return mountOn(folder, nullptr, MS_BIND, nullptr) &&
               mount(nullptr, QFile::encodeName(folder).constData(), nullptr,
                     MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

    bool mountOn(const QString& place, const char* type, unsigned long flags, const char* options)
    {
        const QByteArray name = QFile::encodeName(place);
        m_mounted = mount(name.constData(), name.constData(), type, flags, options) == 0
                        ? place
                        : QString();
        return !m_mounted.isEmpty();
    }

    rlim_t m_sizeLimit = RLIM_INFINITY;
    QString m_mounted;
    QString m_folder; ///< Whose mode was changed.
#else
    ~TroubledStore()
    {
        m_holder.closeWriteChannel();
        m_holder.waitForFinished();
        setReadOnly(false);
    }

    bool run(bool restore, QString* error, QString* backup, QString* remark)
    {
        return restore ? store.restoreBackup(source(), error, remark)
                       : store.save(error, backup, remark);
    }

private:
    template <typename On>
    void makeOfSystem(const On& on)
    {
        on("read-only", [&] { return setReadOnly(true); });
        on("held", [&] { return hold(path, {}); });
        on("held alone", [&] { return hold(path, {QStringLiteral("alone")}); });
        on("source held alone", [&] { return hold(source(), {QStringLiteral("alone")}); });
    }

    /// Has another process hold `file`: to others it is readable and writable, or nothing at all.
    bool hold(const QString& file, const QStringList& how)
    {
        const QDir around(QDir::tempPath());
        m_holder.setWorkingDirectory(around.path()); // so that the code page doesn't matter
        m_holder.start(QStringLiteral(KSE_IDLE_PROCESS),
                       QStringList(around.relativeFilePath(file)) + how);
        return m_holder.waitForReadyRead();
    }

    bool setReadOnly(bool readOnly) const
    {
        const auto granted = readOnly ? QFile::ReadOwner : QFile::ReadOwner | QFile::WriteOwner;
        return QFile::setPermissions(path, granted) || !QFile::exists(path);
    }

    QProcess m_holder;
#endif
    FakePixInsight m_pixInsight;
};

} // namespace kse
