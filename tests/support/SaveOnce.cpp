// SPDX-License-Identifier: MIT
// Saves or restores one file, tells what came of it, and tries again once it is told to:
//   save-once save FILE | save-once restore FILE BACKUP
#include "support/SaveOnce.h"

#include "session/PixInsightEnv.h"
#include "support/StoreFixture.h"

#include <QCoreApplication>

#include <cstdio>

using namespace kse;
using namespace Qt::StringLiterals;

namespace {

struct Session
{
    QString path;
    QString source;
    SettingsStore store;
    QString error;
    QString backup;
    QString remark;

    bool open() { return store.load(path, &error) && changeOnce(store); }

    /// Waits while a process of PixInsight's name runs, as in another program's test, unless it is
    /// this one's fault. That is asked before anything else, so that no call is lost on it.
    bool run()
    {
        const bool waits =
            qgetenv("KSE_FAULT_MODE") != "start" || qEnvironmentVariableIsSet("KSE_FAULT_OVER");
        while (waits && !PixInsightEnv::runningProcessIds().isEmpty()) {
        }
        return source.isEmpty() ? store.save(&error, &backup, &remark)
                                : store.restoreBackup(source, &error, &remark);
    }
};

void tell(const char* name, const QString& value)
{
    std::printf("%s=%s\n", name, value.toUtf8().constData());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    Session session{arguments.value(2), arguments.value(3), {}, {}, {}, {}};
    const bool opened = session.open();
    const QString before = stateOf(session.store);
    const bool done = opened && session.run();
    qputenv("KSE_FAULT_OVER", "1");
    tell("outcome", !opened ? u"closed"_s : done ? u"done"_s : u"failed"_s);
    tell("error", session.error);
    tell("backup", session.backup);
    tell("remark", session.remark);
    tell("kept", stateOf(session.store) == before ? u"yes"_s : u"no"_s);
    tell("changed", session.store.isChangedOnDisk() ? u"yes"_s : u"no"_s);
    tell("end", {});
    (void)std::getchar();

    if (!done) {
        // As a user would: what can't be saved for a changed file is loaded and edited again.
        const bool again = (opened && !session.store.isChangedOnDisk()) || session.open();
        session.error.clear();
        if (!again || !session.run()) {
            tell("again", session.error);
            return 1;
        }
    }
    return 0;
}
