// SPDX-License-Identifier: MIT
#pragma once

#include "support/FakePixInsight.h"
#include "support/StoreFixture.h"

#include <QCoreApplication>
#include <QRandomGenerator>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <functional>
#include <map>
#include <thread>

#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kse {

using namespace Qt::StringLiterals;

/// A store whose save meets real trouble. Systems with POSIX only.
struct FaultyStore : StoreFixture
{
    ~FaultyStore()
    {
        if (getuid() == 0) {
            (void)seteuid(0);
        }
        if (!m_mounted.isEmpty()) {
            umount(QFile::encodeName(m_mounted).constData());
        }
        if (!m_denied.isEmpty()) {
            chmod(QFile::encodeName(m_denied).constData(), 0755);
        }
    }

    /// Makes the trouble called `name`; false if only root can, and this isn't root. Every trouble
    /// comes with an edit and with an older backup.
    bool make(const QString& name)
    {
        edit("A/x", QStringLiteral("2"));
        write(source(), "<xsdt><i k=\"B\"/></xsdt>");
        const auto size = static_cast<rlim_t>(QFileInfo(path).size());
        const std::map<QString, std::function<bool()>> troubles{
            {u"closed"_s,
             [&] {
                 return !(store.loaded = false);
             }},
            {u"no source"_s,
             [&] {
                 return QFile::remove(source());
             }},
            {u"text"_s,
             [&] {
                 return write(source(), "text");
             }},
            {u"running"_s,
             [&] {
                 return m_process.start();
             }},
            {u"changed"_s,
             [&] {
                 return write(path, "<xsdt></xsdt>");
             }},
            {u"gone"_s,
             [&] {
                 return QFile::remove(path);
             }},
            {u"protected"_s,
             [&] {
                 return mark("Free") && mark("A/s");
             }},
            {u"no policy"_s,
             [&] {
                 return mark("Free") && !(store.policy = nullptr);
             }},
            {u"no root"_s,
             [&] {
                 return store.document.head.remove(0, 5).size() > 0;
             }},
            {u"no character"_s,
             [&] {
                 return edit("A/s", QString(QChar(0xd800)));
             }},
            {u"folder denied"_s,
             [&] {
                 return deny(dir.path(), 0555);
             }},
            {u"real folder denied"_s,
             [&] {
                 return deny(moveBehindLink(), 0555);
             }},
            {u"folder unlisted"_s,
             [&] {
                 return deny(dir.path(), 0333);
             }},
            {u"no room for the backup"_s,
             [&] {
                 return limitSize(size - 1);
             }},
            // Found when the buffer is flushed, and by a write that is cut short.
            {u"no room"_s,
             [&] {
                 return edit("A/s", u"longer"_s) && limitSize(size);
             }},
            {u"room for a part"_s,
             [&] {
                 return edit("A/s", QString(100'000, u'x')) && limitSize(20'000);
             }},
            {u"full disk"_s,
             [&] {
                 write(source(), fileBytes("<v k=\"b\" t=\"s\">" + QByteArray(8000, 'x') + "</v>"));
                 return edit("A/s", QString(8000, u'x')) && mountFullDisk();
             }},
            {u"read-only disk"_s,
             [&] {
                 return mountReadOnly(dir.path());
             }},
            {u"real read-only disk"_s,
             [&] {
                 return mountReadOnly(moveBehindLink());
             }},
            {u"no replacement"_s,
             [&] {
                 const QString file = moveBehindLink() + u"/file"_s;
                 return mountOver(file, file, nullptr, MS_BIND, nullptr);
             }},
        };
        return troubles.at(name)();
    }

    /// The older backup.
    QString source() const { return path + u".bak-old"_s; }

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
    bool limitSize(rlim_t limit)
    {
        m_sizeLimit = limit;
        return true;
    }

    /// Gives `folder` that mode, which counts for root too, who becomes somebody else for it.
    bool deny(const QString& folder, mode_t mode)
    {
        m_denied = folder;
        constexpr uid_t nobody = 65534;
        if (getuid() == 0) {
            for (const QString& owned : {dir.path(), folder, path}) {
                if (chown(QFile::encodeName(owned).constData(), nobody, nobody) != 0) {
                    return false;
                }
            }
        }
        return chmod(QFile::encodeName(folder).constData(), mode) == 0 &&
               (getuid() != 0 || seteuid(nobody) == 0);
    }

    /// Moves the file to a folder of its own, which is returned, with a link in its place.
    QString moveBehindLink()
    {
        QString folder = dir.filePath(u"real"_s);
        require(QDir().mkdir(folder) && QFile::rename(path, folder + u"/file"_s) &&
                    QFile::link(folder + u"/file"_s, path),
                folder);
        return folder;
    }

    /// Two pages: the file takes one, and what is to replace it takes two.
    bool mountFullDisk()
    {
        const QByteArray bytes = read(path);
        const QString folder = moveBehindLink();
        return mountOver(u"tmpfs"_s, folder, "tmpfs", 0, "size=8k") &&
               write(folder + u"/file"_s, bytes);
    }

    bool mountReadOnly(const QString& folder)
    {
        return mountOver(folder, folder, nullptr, MS_BIND, nullptr) &&
               mount(nullptr, QFile::encodeName(folder).constData(), nullptr,
                     MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

    bool mountOver(const QString& source, const QString& target, const char* type,
                   unsigned long flags, const char* options)
    {
        if (mount(QFile::encodeName(source).constData(), QFile::encodeName(target).constData(),
                  type, flags, options) != 0) {
            return false;
        }
        m_mounted = target;
        return true;
    }

    FakePixInsight m_process;
    rlim_t m_sizeLimit = RLIM_INFINITY;
    QString m_mounted;
    QString m_denied;
};

/// Spoils a file in the short time between its replacement, or its making, and the moment when it
/// is read back: a thread that waits for another file under its name.
class Meddler
{
public:
    Meddler(const QString& path, bool remove)
        : m_path(QFile::encodeName(path))
        , m_thread([this, remove, old = inode()] {
            while (!m_stop && (inode() == old || inode() == 0)) {
            }
            if (!m_stop) {
                (void)(remove ? unlink(m_path.constData()) : truncate(m_path.constData(), 3));
            }
        })
    {
    }
    ~Meddler()
    {
        m_stop = true;
        m_thread.join();
    }

private:
    ino_t inode() const
    {
        struct stat status = {};
        return stat(m_path.constData(), &status) == 0 ? status.st_ino : 0;
    }

    QByteArray m_path;
    std::atomic_bool m_stop = false;
    std::thread m_thread;
};

/// What a process that saves in a loop writes in turns: a value of one length or another.
inline QString loopValue(int turn)
{
    return turn % 2 == 0 ? u"1"_s : QString(40'000, u'2');
}

inline XsdtNode* loopNode(SettingsStore& store)
{
    return store.document.root.findByPath(u"CentralWidgetClients/ProcessConsole/Height");
}

/// Starts a process that saves the file at `path` and restores `source` in turns, by calling the
/// test program with "--in-a-loop", and kills it at a random moment. False if it ended in another
/// way.
inline bool killInTheMiddle(const QString& path, const QString& source)
{
    QProcess loop;
    loop.start(QCoreApplication::applicationFilePath(), {u"--in-a-loop"_s, path, source});
    if (!loop.waitForReadyRead()) {
        return false;
    }
    QThread::usleep(QRandomGenerator::global()->bounded(60'000U));
    loop.kill();
    return loop.waitForFinished() && loop.exitStatus() == QProcess::CrashExit;
}

/// Saves and restores until it is killed, and tells of the first save.
inline int saveAndRestoreInALoop(const QString& path, const QString& source)
{
    SettingsStore store;
    QString error;
    // A process of PixInsight's name, as in another program's test, only holds it up.
    const auto goesOn = [&error](bool done) {
        return done || error.startsWith(u"PixInsight is running.");
    };
    bool told = false;
    bool done = store.load(path, &error);
    for (int turn = 0; goesOn(done); ++turn) {
        loopNode(store)->value = loopValue(turn);
        done = store.save(&error);
        if (done && !told) {
            std::puts("saved");
            std::fflush(stdout);
            told = true;
        }
        done = goesOn(done) && store.restoreBackup(source, &error);
    }
    qCritical("%s", qPrintable(error));
    return 1;
}

} // namespace kse
