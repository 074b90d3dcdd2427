// SPDX-License-Identifier: MIT
#include "session/dialogs/BackupsDialog.h"
#include "support/DialogAnswerer.h"
#include "support/TestMain.h"

#include <QtWidgets>

namespace {

const QString fileName = u"core-&lt;%1&-pxi.settings"_s;

/// The dialog over a folder with four backups, "1" the oldest.
struct Backups
{
    Backups()
    {
        const int sizes[] = {1023, 1024, 2047, 1'572'864};
        for (int i = 0; i < 4; ++i) {
            const QDateTime time({2024, 5, 6 + i}, {7, 8, 9});
            QVERIFY(writeFile(pathOf(i + 1), QByteArray(sizes[i], 'x'), time));
        }
        dialog = std::make_unique<BackupsDialog>(folder.filePath(fileName));
        list = dialog->findChild<QListWidget*>(u"list"_s);
        keep = dialog->findChild<QSpinBox*>(u"keep"_s);
        QObject::connect(dialog.get(), &BackupsDialog::message, dialog.get(),
                         [this](const QString& text) { said += text; });
        dialog->show();
    }

    QString pathOf(int number) const
    {
        return folder.filePath(fileName + u".bak-"_s + QString::number(number));
    }

    QPushButton* button(const QString& name) const { return dialog->findChild<QPushButton*>(name); }

    /// The texts that change, and the focus.
    QString text() const
    {
        QStringList lines{dialog->findChild<QLabel*>(u"header"_s)->text()};
        for (int row = 0; row < list->count(); ++row) {
            lines << list->item(row)->text();
        }
        for (const QString& name : {u"deleteOlder"_s, u"deleteSelected"_s, u"deleteAll"_s}) {
            lines += QStringList(button(name)->isEnabled(), button(name)->text());
        }
        return (lines << dialog->focusWidget()->objectName()).join(u" / "_s).remove(fileName);
    }

    QTemporaryDir folder;
    std::unique_ptr<BackupsDialog> dialog;
    QListWidget* list = nullptr;
    QSpinBox* keep = nullptr;
    QString said;
};

} // namespace

class TestBackupsDialog : public QObject
{
    Q_OBJECT

private slots:
    void storesNumberToKeepAtOnce()
    {
        QSettings().setValue(u"Backups/Keep"_s, u"many"_s);
        Backups backups;
        QCOMPARE(backups.keep->value(), 5);
        QCOMPARE(backups.text(), u"4 backup(s) of , 1.5 MiB in total (newest first): / "
                                 "2024-05-09 07:08:09      1.5 MiB    .bak-4 / "
                                 "2024-05-08 07:08:09        1 KiB    .bak-3 / "
                                 "2024-05-07 07:08:09        1 KiB    .bak-2 / "
                                 "2024-05-06 07:08:09       1023 B    .bak-1 / "
                                 "Delete all backups / list"_s);
        backups.keep->setFocus();
        backups.keep->selectAll();
        QTest::keyClicks(backups.keep, u"2"_s);
        QTest::keyClick(backups.keep, Qt::Key_Return);
        QVERIFY(backups.dialog->isVisible());
        backups.list->selectAll();
        QVERIFY(backups.text().endsWith(u"Delete the 2 older backup(s) (1 KiB) / Delete selected "
                                        "(4) / Delete all backups / keep"_s));
        QCOMPARE(Backups().keep->value(), 2);
    }

    /// Columns: button, number to keep, what happens while it asks; the question, what is left
    /// after No and after Yes, and the message.
    void removesAfterConsent()
    {
        const auto removed = [](const QStringList& cells) {
            Backups backups;
            const QByteArray data = QFile::encodeName(backups.folder.filePath(u"data"_s));
            qputenv("XDG_DATA_HOME", cells[2] == u"no trash"_s ? "/dev/null" : data);
            backups.keep->setValue(cells[1].toInt());
            backups.list->item(1)->setSelected(true);
            backups.list->item(2)->setSelected(true);
            QStringList texts;
            for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
                const DialogAnswerer<QMessageBox> answerer([&](QMessageBox& box) {
                    texts << box.text().section(u'\n', 0, 0);
                    QCOMPARE(box.defaultButton(), box.button(QMessageBox::No));
                    QVERIFY(answer == QMessageBox::No || cells[2] != u"2 is replaced" ||
                            (QFile::remove(backups.pathOf(2)) && QDir().mkdir(backups.pathOf(2))));
                    box.button(answer)->click();
                });
                backups.button(cells[0])->setFocus();
                backups.button(cells[0])->click();
                texts << QString();
                for (int row = 0; row < backups.list->count(); ++row) {
                    texts.last() += backups.list->item(row)->text().back();
                }
            }
            texts.removeDuplicates();
            texts << backups.said + backups.dialog->focusWidget()->objectName();
#ifdef Q_OS_WIN // where there may be a Recycle Bin or none
            const QRegularExpression how(u"Moved|Deleted| to the Recycle Bin"_s);
            if (texts.join(u" / "_s).remove(how) == QString(cells.last()).remove(how)) {
                return cells.last();
            }
#endif
            return texts.join(u" / "_s);
        };
        compareRows(
            {"deleteOlder > 3 > nothing > Delete the 1 backups older than the newest 3 (1023 B)? / "
             "4321 / 432 / Moved 1 backup(s) to the Recycle Bin (1023 B).list",
             "deleteAll > 1 > nothing > Delete all 4 backups (1.5 MiB)? / 4321 /  / Moved 4 "
             "backup(s) to the Recycle Bin (1.5 MiB).list",
             "deleteSelected > 5 > no trash > Delete the 2 selected backup(s) (2 KiB)? / 4321 / 41 "
             "/ Deleted 2 backup(s) (2 KiB).list",
             "deleteSelected > 5 > 2 is replaced > Delete the 2 selected backup(s) (2 KiB)? / 4321 "
             "/ 41 / Moved 1 backup(s) to the Recycle Bin (1 KiB). 1 could not be removed.list"},
            removed);
    }
};

KSE_TEST_MAIN(TestBackupsDialog)
#include "TestBackupsDialog.moc"
