// SPDX-License-Identifier: MIT
#include "session/BackupsDialog.h"
#include "session/PixInsightEnv.h"
#include "support/DialogAnswerer.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace kse;

namespace {

const QString fileName = u"core-<b>%1&-pxi.settings"_s;

} // namespace

class TestBackupsDialog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void listsNewestFirst();
    void storesNumberToKeepAtOnce();
    void readsStoredNumber_data();
    void readsStoredNumber();
    void removesAfterConsent_data();
    void removesAfterConsent();
    void tellsWhatCouldNotBeRemoved();
    void changesNothingWithoutConsent();

private:
    QString path(const QString& suffix) const { return m_folder->filePath(fileName + suffix); }
    QStringList backupsLeft() const;
    void open();
    QPushButton* button(const QString& name) const
    {
        return m_dialog->findChild<QPushButton*>(name);
    }
    QString clickAndAnswer(const QString& name, QMessageBox::StandardButton answer);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<BackupsDialog> m_dialog;
    QListWidget* m_list = nullptr;
    QSpinBox* m_keep = nullptr;
};

// Four backups, the first one the oldest.
void TestBackupsDialog::init()
{
    QSettings().clear();
    m_folder = std::make_unique<QTemporaryDir>();
    const QDateTime oldest({2024, 5, 6}, {7, 8, 9});
    const int sizes[] = {1023, 1024, 2047, 1'572'864};
    for (int i = 0; i < 4; ++i) {
        QFile file(path(u".bak-%1"_s.arg(i + 1)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(QByteArray(sizes[i], 'x')), sizes[i]);
        QVERIFY(file.flush());
        QVERIFY(file.setFileTime(oldest.addDays(i), QFileDevice::FileModificationTime));
    }
    open();
}

void TestBackupsDialog::open()
{
    m_dialog = std::make_unique<BackupsDialog>(path(QString()));
    m_list = m_dialog->findChild<QListWidget*>(u"list"_s);
    m_keep = m_dialog->findChild<QSpinBox*>(u"keep"_s);
    m_dialog->show();
}

QStringList TestBackupsDialog::backupsLeft() const
{
    QStringList left;
    for (const QString& backup : PixInsightEnv::backupsOf(path(QString()))) {
        left << backup.section(u'-', -1);
    }
    return left;
}

// Returns the question that the button asks.
QString TestBackupsDialog::clickAndAnswer(const QString& name, QMessageBox::StandardButton answer)
{
    QString question;
    const DialogAnswerer<QMessageBox> answerer([&](QMessageBox& box) {
        question = box.text();
        QCOMPARE(box.defaultButton(), box.button(QMessageBox::No));
        box.button(answer)->click();
    });
    QTest::mouseClick(button(name), Qt::LeftButton);
    return question;
}

void TestBackupsDialog::listsNewestFirst()
{
    const auto* header = m_dialog->findChild<QLabel*>(u"header"_s);
    QCOMPARE(header->text(),
             u"4 backup(s) of "_s + fileName + u", 1.5 MiB in total (newest first):"_s);
    QStringList lines;
    for (int row = 0; row < m_list->count(); ++row) {
        lines << m_list->item(row)->text().remove(fileName);
    }
    QCOMPARE(lines, QStringList({u"2024-05-09 07:08:09      1.5 MiB    .bak-4"_s,
                                 u"2024-05-08 07:08:09        1 KiB    .bak-3"_s,
                                 u"2024-05-07 07:08:09        1 KiB    .bak-2"_s,
                                 u"2024-05-06 07:08:09       1023 B    .bak-1"_s}));
    QCOMPARE(button(u"deleteSelected"_s)->text(), u"Delete selected"_s);
    QVERIFY(!button(u"deleteSelected"_s)->isEnabled());
    m_list->selectAll();
    QCOMPARE(button(u"deleteSelected"_s)->text(), u"Delete selected (4)"_s);
    QVERIFY(button(u"deleteSelected"_s)->isEnabled());
}

void TestBackupsDialog::storesNumberToKeepAtOnce()
{
    const QPushButton* older = button(u"deleteOlder"_s);
    QCOMPARE(m_keep->value(), 5);
    QCOMPARE(older->text(), u"Delete older backups"_s);
    QVERIFY(!older->isEnabled());
    m_keep->setFocus();
    m_keep->selectAll();
    QTest::keyClicks(m_keep, u"2"_s);
    QTest::keyClick(m_keep, Qt::Key_Return);
    QVERIFY(m_dialog->isVisible());
    QCOMPARE(older->text(), u"Delete the 2 older backup(s) (1 KiB)"_s);
    QVERIFY(older->isEnabled());
    m_dialog->close();
    QCOMPARE(QSettings().value(u"Backups/Keep"_s).toInt(), 2);
}

void TestBackupsDialog::readsStoredNumber_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<int>("shown");
    QTest::newRow("as stored") << QVariant(3) << 3;
    QTest::newRow("too large") << QVariant(1000) << 999;
    QTest::newRow("no number") << QVariant(u"many"_s) << 5;
}

void TestBackupsDialog::readsStoredNumber()
{
    QFETCH(QVariant, stored);
    QSettings().setValue(u"Backups/Keep"_s, stored);
    open();
    QTEST(m_keep->value(), "shown");
    QCOMPARE(QSettings().value(u"Backups/Keep"_s).toString(), stored.toString());
}

void TestBackupsDialog::removesAfterConsent_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("keep");
    QTest::addColumn<QString>("prompt");
    QTest::addColumn<QStringList>("left");
    QTest::addColumn<bool>("hasTrash");
    QTest::addColumn<QString>("message");
    QTest::newRow("selected") << u"deleteSelected"_s << 5
                              << u"Delete the 2 selected backup(s) (2 KiB)"_s
                              << QStringList{u"4"_s, u"1"_s} << true
                              << u"Moved 2 backup(s) to the Recycle Bin (2 KiB)."_s;
    QTest::newRow("older") << u"deleteOlder"_s << 3
                           << u"Delete the 1 backups older than the newest 3 (1023 B)"_s
                           << QStringList{u"4"_s, u"3"_s, u"2"_s} << true
                           << u"Moved 1 backup(s) to the Recycle Bin (1023 B)."_s;
    QTest::newRow("older than none")
        << u"deleteOlder"_s << 0 << u"Delete the 4 backups older than the newest 0 (1.5 MiB)"_s
        << QStringList() << true << u"Moved 4 backup(s) to the Recycle Bin (1.5 MiB)."_s;
    QTest::newRow("all, without a trash")
        << u"deleteAll"_s << 5 << u"Delete all 4 backups (1.5 MiB)"_s << QStringList() << false
        << u"Deleted 4 backup(s) (1.5 MiB)."_s;
}

void TestBackupsDialog::removesAfterConsent()
{
    QFETCH(QString, button);
    QFETCH(QString, prompt);
    QFETCH(int, keep);
    QFETCH(bool, hasTrash);
    qputenv("XDG_DATA_HOME", hasTrash ? m_folder->filePath(u"data"_s).toLocal8Bit() : "/dev/null");
    m_keep->setValue(keep);
    m_list->item(1)->setSelected(true);
    m_list->item(2)->setSelected(true);
    const QSignalSpy told(m_dialog.get(), &BackupsDialog::message);
    QCOMPARE(clickAndAnswer(button, QMessageBox::Yes),
             prompt + u"?\n\nThey are moved to the Recycle Bin where the system has one, otherwise "
                      "deleted."_s);
    QTEST(backupsLeft(), "left");
    QCOMPARE(m_list->count(), backupsLeft().size());
    QCOMPARE(this->button(u"deleteAll"_s)->isEnabled(), m_list->count() > 0);
    QTEST(told.value(0).value(0).toString(), "message");
}

void TestBackupsDialog::tellsWhatCouldNotBeRemoved()
{
    m_list->selectAll();
    QVERIFY(QFile::remove(path(u".bak-2"_s)));
    const QSignalSpy told(m_dialog.get(), &BackupsDialog::message);
    clickAndAnswer(u"deleteSelected"_s, QMessageBox::Yes);
    QVERIFY(told.value(0).value(0).toString().endsWith(u"(1.5 MiB). 1 could not be removed."_s));
    QCOMPARE(m_dialog->findChild<QLabel*>(u"header"_s)->text(),
             u"No backups of "_s + fileName + u'.');
}

void TestBackupsDialog::changesNothingWithoutConsent()
{
    const QSignalSpy told(m_dialog.get(), &BackupsDialog::message);
    QVERIFY(!clickAndAnswer(u"deleteAll"_s, QMessageBox::No).isEmpty());
    QCOMPARE(backupsLeft().size(), 4);
    QCOMPARE(m_list->count(), 4);
    QCOMPARE(told.count(), 0);
}

KSE_TEST_MAIN(TestBackupsDialog)
#include "TestBackupsDialog.moc"
