// SPDX-License-Identifier: MIT
#pragma once

#include "support/StoreFixture.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstdio>

#include <sys/stat.h>

namespace kse {

/// One save or restore by a process of its own, the test program called with "--once", in which a
/// call for a file goes wrong. Linux only. What can go wrong stands in FaultyCalls.cpp.
struct FaultTrial
{
    enum class Outcome { Closed, Failed, Done, Died }; ///< Closed: it couldn't be loaded.

    /// A call for a file below the folder, as it was logged.
    struct Call
    {
        QByteArray name;
        bool worked;
        quint64 file;
        QString path;
    };

    /// The place is "plain", "linked" for a file behind a symbolic link, or "named" for a file
    /// system that has neither files without a name nor hard links.
    FaultTrial(bool isRestore, const QString& place)
        : restore(isRestore)
        , linked(place == u"linked")
        , named(place == u"named")
    {
        const QByteArray content(linked ? 10 : 20'000, 'x'); // what Qt collects first, or not
        const auto withValue = [&content](const QByteArray& value) {
            return fileBytes(R"(<i k="A"><v k="x" t="i" v=")" + value + R"("/><v k="s" t="s">)" +
                             content + "</v></i>");
        };
        oldBytes = withValue("1");
        newBytes = withValue(restore ? "7" : "2");
        olderBytes = withValue("7");
    }
    ~FaultTrial() { (void)finish(); }
    FaultTrial(const FaultTrial&) = delete;
    FaultTrial& operator=(const FaultTrial&) = delete;

    /// Makes the folder and runs in it with the `at`-th call going wrong, or all from there.
    void run(const QString& fault, int at, bool lasting)
    {
        (void)finish();
        QDir(folder).removeRecursively();
        QFile::remove(log);
        StoreFixture::require(QDir().mkpath(QFileInfo(target()).path()), folder);
        StoreFixture::write(target(), oldBytes);
        StoreFixture::write(older, olderBytes);
        StoreFixture::require(!linked || QFile::link(target(), path), path);
        m_olderStamp = statusOf(older).st_mtim.tv_nsec;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(KSE_FAULTY_CALLS));
        environment.insert(QStringLiteral("ASAN_OPTIONS"),
                           QStringLiteral("verify_asan_link_order=0"));
        environment.insert(QStringLiteral("KSE_FAULT_FOLDER"), folder);
        environment.insert(QStringLiteral("KSE_FAULT_LOG"), log);
        environment.insert(QStringLiteral("KSE_FAULT"), fault);
        environment.insert(QStringLiteral("KSE_FAULT_AT"), QString::number(at));
        environment.insert(QStringLiteral("KSE_FAULT_LASTING"), QString(lasting ? 1 : 0, u'1'));
        environment.insert(QStringLiteral("KSE_FAULT_NAMED"), QString(named ? 1 : 0, u'1'));
        start(environment);
        readLog();
    }

    /// Has it try again without a fault, by a new process if the other has died. False if that
    /// fails.
    bool tryAgain()
    {
        if (outcome == Outcome::Died) {
            start(QProcessEnvironment::systemEnvironment());
        }
        return finish() && m_process.exitCode() == 0;
    }

    /// The file itself.
    QString target() const { return linked ? folder + QStringLiteral("/real/file") : path; }

    bool olderUntouched() const
    {
        return contentOf(older) == olderBytes && statusOf(older).st_mtim.tv_nsec == m_olderStamp;
    }

    /// Files that are neither the settings file nor a backup that was there before.
    QStringList newFiles() const
    {
        QStringList paths;
        for (const QString& place : {folder, folder + QStringLiteral("/real")}) {
            const QFileInfoList found =
                QDir(place).entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
            for (const QFileInfo& file : found) {
                paths.append(file.filePath());
            }
        }
        for (const QString& known : {path, target(), older, claimed}) {
            paths.removeAll(known);
        }
        return paths;
    }

    QStringList newBackups() const
    {
        static const QRegularExpression form(
            QStringLiteral(R"(\.bak-\d{8}-\d{6}(-before-restore)?(-\d+)?$)"));
        return newFiles().filter(form);
    }

    /// What the log says was done with backup, file and folders, in that order. The folder of a
    /// linked file is the real one. What is repeated counts once.
    QString steps() const
    {
        const QString made = newBackups().value(0);
        QMap<quint64, QString> names{{statusOf(QFileInfo(target()).path()).st_ino, {}},
                                     {statusOf(made).st_ino, QStringLiteral(" backup")}};
        names[statusOf(folder + QStringLiteral("/real")).st_ino] = QStringLiteral(" real folder");
        names[statusOf(folder).st_ino] = QStringLiteral(" folder");
        names[statusOf(target()).st_ino] = QStringLiteral(" file");
        QStringList steps{QString()};
        for (const Call& call : calls) {
            const bool gains = call.path == target() || call.path == made; // its name
            const bool counts = call.name == "read" || call.name == (gains ? "name" : "write") ||
                                call.name == (gains ? "rename" : "flush");
            const QString step = QString::fromLatin1(call.name) + names.value(call.file);
            // Qt flushes the file once more before it renames it.
            const bool again = (steps.size() == 1 && call.name == "read") || steps.last() == step ||
                               (step == u"flush file" && steps.contains(step));
            if (call.worked && names.contains(call.file) && counts && !again) {
                steps.append(step);
            }
        }
        return steps.mid(1).join(QStringLiteral(", "));
    }

    /// Which call, from 1, was the last of that name before the `end`-th; 0 if none was.
    int last(const QByteArray& name, int end = INT_MAX) const
    {
        int place = 0;
        for (int i = 0; i < std::min(end - 1, int(calls.size())); ++i) {
            place = calls[i].name == name ? i + 1 : place;
        }
        return place;
    }

    /// Which call, from 1, put another file in the place of the old one; behind all if none did.
    int replacement() const
    {
        const auto isIt = [this](const Call& call) {
            return call.worked && call.name == "rename" && call.path == target();
        };
        return int(std::find_if(calls.begin(), calls.end(), isIt) - calls.begin()) + 1;
    }

    const bool restore;
    const bool linked;
    const bool named;
    QTemporaryDir dir;
    QString folder = QFileInfo(dir.path()).canonicalFilePath() + QStringLiteral("/work");
    QString log = folder + QStringLiteral(".log");
    QString path = folder + QStringLiteral("/core-001-pxi.settings"); ///< As it is opened.
    QString older = path + QStringLiteral(".bak-20200101-000000");    ///< Is what is restored.
    QByteArray oldBytes;
    QByteArray newBytes;
    QByteArray olderBytes;

    Outcome outcome = Outcome::Died;
    QString error;
    QString backup; ///< What a save has named.
    QString remark;
    bool kept = false; ///< Whether tree, pending changes and hash are as they were.
    QList<Call> calls;
    QString claimed; ///< What somebody else has put under the name of a backup, if so.

private:
    static struct stat statusOf(const QString& path)
    {
        struct stat status = {};
        (void)stat(QFile::encodeName(path).constData(), &status);
        return status;
    }

    bool finish()
    {
        m_process.closeWriteChannel();
        return m_process.state() == QProcess::NotRunning || m_process.waitForFinished();
    }

    void start(const QProcessEnvironment& environment)
    {
        m_process.setProcessEnvironment(environment);
        m_process.start(QCoreApplication::applicationFilePath(),
                        QStringList{QStringLiteral("--once"), path} +
                            (restore ? QStringList(older) : QStringList()));
        QByteArray output;
        while (output.count('\n') < 5 && m_process.waitForReadyRead()) {
            output += m_process.readAll();
        }
        const QStringList told = QString::fromUtf8(output).split(u'\n');
        outcome = told.size() > 5 ? Outcome(told[0].toInt()) : Outcome::Died;
        kept = told.value(1) == u"1";
        error = told.value(2);
        backup = told.value(3);
        remark = told.value(4);
        StoreFixture::require(outcome != Outcome::Died ||
                                  (finish() && m_process.exitCode() == SIGKILL),
                              QString::fromUtf8(m_process.readAllStandardError()));
    }

    void readLog()
    {
        calls.clear();
        claimed.clear();
        for (const QByteArray& line : contentOf(log).split('\n')) {
            const QList<QByteArray> words = line.split(' ');
            const QString file = QFile::decodeName(words.mid(3).join(' '));
            if (words[0] == "claim") {
                claimed = file;
            } else if (words.size() > 3) {
                calls.append({words[0], words[1] == "0", words[2].toULongLong(), file});
            }
        }
    }

    qint64 m_olderStamp = 0;
    QProcess m_process;
};

/// What the process of a trial does: saves the file at `path`, or restores `source` unless that is
/// empty, tells what came of it, and tries once more, if need be, when its input ends.
inline int saveOnce(const QString& path, const QString& source)
{
    SettingsStore store;
    QString told[3];
    auto& [error, backup, remark] = told;
    const auto open = [&] {
        XsdtNode* const node = store.load(path, &error)
                                   ? store.document.root.findByPath(QStringLiteral("A/x"))
                                   : nullptr;
        if (node) {
            node->value = QStringLiteral("2");
        }
        return node != nullptr;
    };
    const auto run = [&] {
        return source.isEmpty() ? store.save(&error, &backup, &remark)
                                : store.restoreBackup(source, &error, &remark);
    };
    using Outcome = FaultTrial::Outcome;
    const bool opened = open();
    const QString before = stateOf(store);
    const Outcome outcome = !opened ? Outcome::Closed : run() ? Outcome::Done : Outcome::Failed;
    qputenv("KSE_FAULT_OVER", "1");
    std::printf("%d\n%d\n", int(outcome), int(stateOf(store) == before));
    for (const QString& text : told) {
        std::printf("%s\n", qPrintable(text));
    }
    std::fflush(stdout);
    (void)std::getchar();
    // As a user would: what can't be saved for a changed file is loaded and edited again.
    const bool ready = opened && !store.isChangedOnDisk();
    return outcome == Outcome::Done || ((ready || open()) && run()) ? 0 : 1;
}

} // namespace kse
