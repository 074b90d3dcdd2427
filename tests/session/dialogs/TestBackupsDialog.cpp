// SPDX-License-Identifier: MIT
#include "session/dialogs/BackupsDialog.h"
#include "support/DialogAnswerer.h"
#include "support/TestMain.h"
#include "support/TextRows.h"

#include <QApplication>
#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QUrl>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

const QString fileName = u"core-&lt;%1&-pxi.settings"_s;

// The dialog over a folder with four backups, "1" the oldest.
struct Backups
{
    Backups()
    {
        const int sizes[] = {1023, 1024, 2047, 1'572'864};
        for (int i = 0; i < 4; ++i) {
            QFile file(folder.filePath(fileName + u".bak-"_s + QString::number(i + 1)));
            const QDateTime time({2024, 5, 6 + i}, {7, 8, 9});
            if (!file.open(QIODevice::WriteOnly) || file.write(QByteArray(sizes[i], 'x')) < 0 ||
                !file.flush() || !file.setFileTime(time, QFileDevice::FileModificationTime)) {
                qFatal("%s", qPrintable(file.errorString()));
            }
        }
        dialog = std::make_unique<BackupsDialog>(folder.filePath(fileName));
        list = dialog->findChild<QListWidget*>(u"list"_s);
        keep = dialog->findChild<QSpinBox*>(u"keep"_s);
        dialog->show();
    }

    QPushButton* button(const QString& name) const { return dialog->findChild<QPushButton*>(name); }
    QString header() const { return dialog->findChild<QLabel*>(u"header"_s)->text(); }

    /// Calls `before` while the question is open.
    QString clickAndAnswer(
        const QString& name, QMessageBox::StandardButton answer,
        const std::function<void()>& before = [] {}) const
    {
        QString question;
        const DialogAnswerer<QMessageBox> answerer([&](QMessageBox& box) {
            question = box.text();
            QCOMPARE(box.defaultButton(), box.button(QMessageBox::No));
            before();
            box.button(answer)->click();
        });
        button(name)->setFocus();
        button(name)->click();
        return question;
    }

    QTemporaryDir folder;
    std::unique_ptr<BackupsDialog> dialog;
    QListWidget* list = nullptr;
    QSpinBox* keep = nullptr;
};

} // namespace

class TestBackupsDialog : public QObject
{
    Q_OBJECT

public slots:
    void open(const QUrl& url) { m_opened = url; }

private slots:
    void listsNewestFirst();
    void opensTheFolder();
    void storesNumberToKeepAtOnce();
    void removesAfterConsent_data();
    void removesAfterConsent();
    void tellsWhatCouldNotBeRemoved_data();
    void tellsWhatCouldNotBeRemoved();

private:
    QUrl m_opened;
};

void TestBackupsDialog::listsNewestFirst()
{
    const Backups backups;
    QCOMPARE(backups.header(),
             u"4 backup(s) of "_s + fileName + u", 1.5 MiB in total (newest first):"_s);
    QStringList lines;
    for (int row = 0; row < backups.list->count(); ++row) {
        lines << backups.list->item(row)->text().remove(fileName);
    }
    QCOMPARE(lines, QStringList({u"2024-05-09 07:08:09      1.5 MiB    .bak-4"_s,
                                 u"2024-05-08 07:08:09        1 KiB    .bak-3"_s,
                                 u"2024-05-07 07:08:09        1 KiB    .bak-2"_s,
                                 u"2024-05-06 07:08:09       1023 B    .bak-1"_s}));
    const QPushButton* selected = backups.button(u"deleteSelected"_s);
    QVERIFY(!selected->isEnabled());
    backups.list->selectAll();
    QCOMPARE(selected->text(), u"Delete selected (4)"_s);
    QVERIFY(selected->isEnabled());
}

void TestBackupsDialog::opensTheFolder()
{
    const Backups backups;
    const QString folder = backups.folder.path();
    QCOMPARE(backups.dialog->findChild<QLabel*>(u"folder"_s)->text(),
             u"Folder: "_s + QDir::toNativeSeparators(folder));
    QDesktopServices::setUrlHandler(u"file"_s, this, "open");
    backups.button(u"openFolder"_s)->click();
    QDesktopServices::unsetUrlHandler(u"file"_s);
    QCOMPARE(m_opened, QUrl::fromLocalFile(folder));
}

void TestBackupsDialog::storesNumberToKeepAtOnce()
{
    QSettings().setValue(u"Backups/Keep"_s, u"many"_s);
    const Backups backups;
    const QPushButton* older = backups.button(u"deleteOlder"_s);
    QCOMPARE(backups.keep->value(), 5);
    QCOMPARE(older->text(), u"Delete older backups"_s);
    QVERIFY(!older->isEnabled());
    backups.keep->setFocus();
    backups.keep->selectAll();
    QTest::keyClicks(backups.keep, u"2"_s);
    QTest::keyClick(backups.keep, Qt::Key_Return);
    QVERIFY(backups.dialog->isVisible());
    QCOMPARE(older->text(), u"Delete the 2 older backup(s) (1 KiB)"_s);
    QCOMPARE(QSettings().value(u"Backups/Keep"_s).toInt(), 2);
    QCOMPARE(Backups().keep->value(), 2);
}

void TestBackupsDialog::removesAfterConsent_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("keep");
    QTest::addColumn<QString>("prompt");
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("message");
    QTest::newRow("selected") << u"deleteSelected"_s << 5
                              << u"Delete the 2 selected backup(s) (2 KiB)"_s << u"41"_s
                              << u"Moved 2 backup(s) to the Recycle Bin (2 KiB)."_s;
    QTest::newRow("older") << u"deleteOlder"_s << 3
                           << u"Delete the 1 backups older than the newest 3 (1023 B)"_s << u"432"_s
                           << u"Moved 1 backup(s) to the Recycle Bin (1023 B)."_s;
    QTest::newRow("all, without a trash")
        << u"deleteAll"_s << 5 << u"Delete all 4 backups (1.5 MiB)"_s << QString()
        << u"Deleted 4 backup(s) (1.5 MiB)."_s;
}

void TestBackupsDialog::removesAfterConsent()
{
    QFETCH(QString, button);
    QFETCH(QString, prompt);
    QFETCH(int, keep);
    QFETCH(QString, message);
    const Backups backups;
    qputenv("XDG_DATA_HOME", message.startsWith(u"Moved"_s)
                                 ? backups.folder.filePath(u"data"_s).toLocal8Bit()
                                 : "/dev/null");
    backups.keep->setValue(keep);
    backups.list->item(1)->setSelected(true);
    backups.list->item(2)->setSelected(true);
    const QSignalSpy told(backups.dialog.get(), &BackupsDialog::message);
    const QString question = prompt + u"?\n\nThey are moved to the Recycle Bin where the system "
                                      "has one, otherwise deleted."_s;
    QCOMPARE(backups.clickAndAnswer(button, QMessageBox::No), question);
    QCOMPARE(backups.list->count(), 4);
    QCOMPARE(told.count(), 0);
    QCOMPARE(backups.clickAndAnswer(button, QMessageBox::Yes), question);
    QString left;
    for (int row = 0; row < backups.list->count(); ++row) {
        left += backups.list->item(row)->text().back();
    }
    QTEST(left, "left");
    QCOMPARE(backups.dialog->focusWidget(), backups.list);
    QCOMPARE(QDir(backups.folder.path()).entryList(QDir::Files).size(), left.size());
    QString said = told.value(0).value(0).toString();
#ifdef Q_OS_WIN
    // Whether there is a Recycle Bin isn't for this test to say.
    for (QString* text : {&said, &message}) {
        text->remove(u" to the Recycle Bin"_s).replace(u"Moved"_s, u"Deleted"_s);
    }
#endif
    QCOMPARE(said, message);
}

void TestBackupsDialog::tellsWhatCouldNotBeRemoved_data()
{
    addTextRows({"before > (1.5 MiB). 1 could not be removed.",
                 "meanwhile > (1.5 MiB). 1 could not be removed.",
                 "replaced > (1.5 MiB). 1 could not be removed.",
                 "all > Deleted 0 backup(s) (0 B). 4 could not be removed."});
}
void TestBackupsDialog::tellsWhatCouldNotBeRemoved()
{
    QFETCH(const QStringList, cells);
    const Backups backups;
    backups.list->selectAll();
    const QString victim = backups.list->item(2)->data(Qt::UserRole).toString();
    const auto spoil = [&] {
        QVERIFY(cells[0] == u"all"_s ? QDir(backups.folder.path()).removeRecursively()
                                     : QFile::remove(victim));
        QVERIFY(cells[0] != u"replaced"_s || QDir().mkdir(victim));
    };
    if (cells[0] == u"before"_s) {
        spoil();
    }
    const QSignalSpy told(backups.dialog.get(), &BackupsDialog::message);
    backups.clickAndAnswer(u"deleteSelected"_s, QMessageBox::Yes, [&] {
        if (cells[0] != u"before"_s) {
            spoil();
        }
    });
    QVERIFY(told.value(0).value(0).toString().endsWith(cells[1]));
    QCOMPARE(backups.header(), u"No backups of "_s + fileName + u'.');
}

KSE_TEST_MAIN(TestBackupsDialog)
#include "TestBackupsDialog.moc"
