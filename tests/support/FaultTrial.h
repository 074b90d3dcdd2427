// SPDX-License-Identifier: MIT
#pragma once

#include "support/SaveOnce.h"
#include "support/StoreFixture.h"

#include <QProcess>
#include <QRegularExpression>

#include <csignal>
#include <utility>

#include <sys/stat.h>

namespace kse {

/// One save or restore by a process of its own in which a call for a file goes wrong. Linux only.
/// What can go wrong stands in FaultyCalls.cpp.
class FaultTrial
{
public:
    enum class Outcome {
        Closed, ///< The file could not be loaded.
        Failed,
        Done,
        Died
    };
    /// A call for a file below the folder, as it was logged.
    struct Call
    {
        QByteArray name;
        bool worked;
        quint64 file;
        QString path;
    };

    /// What is to be done, and where the file lies: behind a link or not, and on a file system
    /// that has files without a name, and hard links, or not.
    FaultTrial(bool restore, bool link, bool named)
        : m_restore(restore)
        , m_link(link)
        , m_named(named)
    {
        const QString folder = QFileInfo(m_dir.path()).canonicalFilePath();
        m_folder = folder + QStringLiteral("/work");
        m_log = folder + QStringLiteral("/log");
        path = m_folder + QStringLiteral("/core-001-pxi.settings");
        target = link ? m_folder + QStringLiteral("/real/file") : path;
        older = path + QStringLiteral(".bak-20200101-000000");
        const int size = link ? 10 : 20'000; // what Qt collects before it writes, or not
        oldBytes = withValue("1", size);
        newBytes = withValue(restore ? "7" : "2", size);
        olderBytes = withValue("7", size);
    }
    ~FaultTrial() { finish(); }
    FaultTrial(const FaultTrial&) = delete;
    FaultTrial& operator=(const FaultTrial&) = delete;

    /// Makes the folder anew and runs in it with the `at`-th call going wrong, or all from there.
    void run(const QString& mode, int at, bool lasting, const QString& victim)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        const auto set = [&environment](const char* name, const QString& value) {
            environment.insert(QString::fromLatin1(name), value);
        };
        set("LD_PRELOAD", QStringLiteral(KSE_FAULTY_CALLS));
        set("ASAN_OPTIONS", QStringLiteral("verify_asan_link_order=0"));
        set("KSE_FAULT_FOLDER", m_folder);
        set("KSE_FAULT_LOG", m_log);
        set("KSE_FAULT_MODE", mode);
        set("KSE_FAULT_AT", QString::number(at));
        set("KSE_FAULT_VICTIM", victim);
        if (lasting) {
            set("KSE_FAULT_LASTING", QStringLiteral("1"));
        }
        if (m_named) {
            set("KSE_FAULT_NAMED", QStringLiteral("1"));
        }
        finish();
        makeFolder();
        QFile::remove(m_log);
        start(environment);
        readLog();
    }

    /// Lets it try again without a fault, in a new process if it has died. False if that fails.
    bool tryAgain()
    {
        if (outcome == Outcome::Died) {
            start(QProcessEnvironment::systemEnvironment());
            if (outcome != Outcome::Done) {
                return false;
            }
        }
        finish();
        error = QString::fromUtf8(m_process.readAll());
        return m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
    }

    /// The content of the file; none if it is gone.
    QByteArray content() const { return contentOf(path); }

    static QByteArray contentOf(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Whether the older backup is as it was made.
    bool olderUntouched() const
    {
        return contentOf(older) == olderBytes && stampOf(older) == m_olderStamp;
    }

    /// The backups that were made, without one that somebody else did.
    QStringList newBackups() const
    {
        QStringList paths;
        for (const QString& found : allFiles()) {
            static const QRegularExpression form(
                QStringLiteral(R"(\.bak-\d{8}-\d{6}(-before-restore)?(-\d+)?$)"));
            if (found != older && contentOf(found) != "claimed" && form.match(found).hasMatch()) {
                paths.append(found);
            }
        }
        return paths;
    }

    /// Files that are neither the settings file nor a backup.
    QStringList leftOvers() const
    {
        QStringList paths = allFiles();
        for (const QString& known : QStringList{path, target, older, claimed} + newBackups()) {
            paths.removeAll(known);
        }
        return paths;
    }

    /// What the log says was done with backup, file and folders, in that order; the folder behind
    /// a link is the real one. What is repeated counts once.
    QString steps() const
    {
        QMap<quint64, QString> names{
            {stampOf(folderOf(target)).first, QStringLiteral(" real folder")}};
        names[stampOf(folderOf(path)).first] = QStringLiteral(" folder");
        names[stampOf(target).first] = QStringLiteral(" file");
        const QString made = newBackups().value(0);
        names[stampOf(made).first] = QStringLiteral(" backup");
        QStringList steps{QString()};
        for (const Call& call : calls) {
            const bool named = call.path == target || call.path == made;
            const bool counts =
                call.name == "read" || (named ? call.name == "name" || call.name == "rename"
                                              : call.name == "write" || call.name == "flush");
            const QString step = QString::fromLatin1(call.name) + names.value(call.file);
            // Qt flushes the file once more before it renames it.
            const bool again = (steps.size() == 1 && call.name == "read") || steps.last() == step ||
                               (step == QStringLiteral("flush file") && steps.contains(step));
            if (call.worked && names.contains(call.file) && counts && !again) {
                steps.append(step);
            }
        }
        return steps.mid(1).join(QStringLiteral(", "));
    }

    /// Which call, from 1, was the last of that name, or the last before the file was replaced; 0
    /// if none was.
    int last(const QByteArray& name, bool beforeReplacement = false) const
    {
        int place = 0;
        for (int i = 0; i < calls.size(); ++i) {
            const bool replaces =
                (calls[i].name == "rename" || calls[i].name == "name") && calls[i].path == target;
            if (beforeReplacement && replaces) {
                break;
            }
            place = calls[i].name == name ? i + 1 : place;
        }
        return place;
    }

    QString path;    ///< As it is opened.
    QString target;  ///< The file itself.
    QString claimed; ///< What somebody else has put under the name of a backup, if so.
    QString older;   ///< A backup that was there before; what is restored.
    QByteArray oldBytes;
    QByteArray newBytes;
    QByteArray olderBytes;

    Outcome outcome = Outcome::Died;
    QString error;
    QString backup; ///< What a save has named.
    QString remark;
    bool kept = false; ///< Whether tree, pending changes and hash are as they were.
    QList<Call> calls;

private:
    static QByteArray withValue(const QByteArray& value, int size)
    {
        return fileBytes(R"(<i k="A"><v k="x" t="i" v=")" + value + R"("/><v k="s" t="s">)" +
                         QByteArray(size, 'x') + "</v></i>");
    }

    static QString folderOf(const QString& path) { return QFileInfo(path).path(); }

    /// Number and time of a file, which tell whether it has been replaced or written.
    static std::pair<quint64, qint64> stampOf(const QString& path)
    {
        struct stat status = {};
        return stat(QFile::encodeName(path).constData(), &status) == 0
                   ? std::pair(quint64(status.st_ino), qint64(status.st_mtim.tv_nsec))
                   : std::pair(quint64(0), qint64(0));
    }

    QStringList allFiles() const
    {
        QStringList paths;
        for (const QString& folder : QStringList{folderOf(path), folderOf(target)}) {
            const QFileInfoList files =
                QDir(folder).entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
            for (const QFileInfo& file : files) {
                paths.append(file.filePath());
            }
        }
        paths.removeDuplicates();
        return paths;
    }

    void makeFolder()
    {
        QDir(m_folder).removeRecursively();
        StoreFixture::require(QDir().mkpath(folderOf(target)), m_folder);
        StoreFixture::write(target, oldBytes);
        StoreFixture::write(older, olderBytes);
        StoreFixture::require(!m_link || QFile::link(target, path), path);
        m_olderStamp = stampOf(older);
    }

    void finish()
    {
        m_process.closeWriteChannel();
        StoreFixture::require(m_process.state() == QProcess::NotRunning ||
                                  m_process.waitForFinished(),
                              m_process.program());
    }

    void start(const QProcessEnvironment& environment)
    {
        m_process.setProcessEnvironment(environment);
        QStringList arguments{QStringLiteral("save"), path};
        if (m_restore) {
            arguments = QStringList{QStringLiteral("restore"), path, older};
        }
        m_process.start(QStringLiteral(KSE_SAVE_ONCE), arguments);
        QByteArray output;
        while (!output.endsWith("end=\n") && m_process.waitForReadyRead()) {
            output += m_process.readAll();
        }
        QMap<QString, QString> told;
        for (const QString& line : QString::fromUtf8(output).split(u'\n')) {
            told[line.section(u'=', 0, 0)] = line.section(u'=', 1);
        }
        const QStringList outcomes{QStringLiteral("closed"), QStringLiteral("failed"),
                                   QStringLiteral("done")};
        const auto index = outcomes.indexOf(told.value(QStringLiteral("outcome")));
        outcome = index < 0 ? Outcome::Died : static_cast<Outcome>(index);
        error = told.value(QStringLiteral("error"));
        backup = told.value(QStringLiteral("backup"));
        remark = told.value(QStringLiteral("remark"));
        kept = told.value(QStringLiteral("kept")) == u"yes";
        if (outcome == Outcome::Died) {
            finish();
            StoreFixture::require(m_process.exitCode() == SIGKILL,
                                  QString::fromUtf8(m_process.readAllStandardError()));
        }
    }

    void readLog()
    {
        calls.clear();
        claimed.clear();
        for (const QByteArray& line : StoreFixture::read(m_log).split('\n')) {
            const QList<QByteArray> words = line.split(' ');
            const QString file = QFile::decodeName(words.mid(3).join(' '));
            if (words[0] == "claim") {
                claimed = file;
            } else if (words.size() > 3) {
                calls.append({words[0], words[1] == "0", words[2].toULongLong(), file});
            }
        }
    }

    QTemporaryDir m_dir;
    QString m_folder;
    QString m_log;
    bool m_restore;
    bool m_link;
    bool m_named;
    std::pair<quint64, qint64> m_olderStamp;
    QProcess m_process;
};

} // namespace kse
