// SPDX-License-Identifier: MIT
#include "app/AboutDialog.h"

#include "Revision.h"
#include "document/XsdtDocument.h"
#include "session/PixInsightEnv.h"
#include "views/model/NodeLooks.h"
#include "widgets/Named.h"
#include "widgets/PixelRatio.h"
#include "widgets/PlainText.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QSysInfo>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

constexpr int pictureSize = 128;
constexpr int minimalWidth = 640;

QLabel* createText(const QString& text, Qt::TextFormat format, int topMargin = 0)
{
    auto* label = new QLabel(text);
    label->setTextFormat(format);
    label->setWordWrap(true);
    label->setContentsMargins(0, topMargin, 0, 0);
    return label;
}

} // namespace

AboutDialog::AboutDialog(const QString& path, const QString& pixinsightVersion, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("About Kestrane Settings Editor"));
    setMinimumWidth(minimalWidth);
    auto* detailsTitle = new QLabel(tr("<b>Technical details</b> (for bug reports)"));
    m_details = named(u"details"_s, new QPlainTextEdit(buildDetails(path, pixinsightVersion)));
    m_details->setReadOnly(true);
    m_details->setTabChangesFocus(true);
    detailsTitle->setBuddy(m_details);
    m_details->setAccessibleName(tr("Technical details")); // without the title's markup
    m_notice =
        named(u"notice"_s,
              createText(tr("© 2026 Kestrane Settings Editor contributors. Not affiliated with or "
                            "endorsed by Pleiades Astrophoto; PixInsight is a trademark of "
                            "Pleiades Astrophoto S.L."),
                         Qt::PlainText));

    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(14);
    layout->addWidget(createHead(), 3);
    layout->addWidget(detailsTitle);
    layout->addWidget(m_details, 1);
    layout->addWidget(m_notice);
    layout->addLayout(createButtons());
    updateLook();
}

QWidget* AboutDialog::createHead()
{
    m_picture = named(u"picture"_s, new QLabel);
    m_picture->setFixedSize(pictureSize, pictureSize);
    updatePicture();
    auto* head = new QWidget;
    auto* row = new QHBoxLayout(head);
    row->setContentsMargins({});
    row->setSpacing(20);
    row->addWidget(m_picture, 0, Qt::AlignTop);
    row->addLayout(createTexts(), 1);
    m_head = named(u"head"_s, new QScrollArea);
    m_head->setAccessibleName(windowTitle());
    m_head->setFrameShape(QFrame::NoFrame);
    m_head->setWidgetResizable(true);
    m_head->setWidget(head);
    return m_head;
}

QLayout* AboutDialog::createTexts()
{
    auto* column = new QVBoxLayout;
    column->setSpacing(6);
    m_name = named(u"name"_s, new QLabel(tr("Kestrane Settings Editor")));
    m_name->setWordWrap(true);
    column->addWidget(m_name);
    column->addWidget(new QLabel(tr("Version %1").arg(QStringLiteral(KSE_VERSION))));
    column->addWidget(createText(
        tr("A safe editor for PixInsight's settings files. Change preferences with proper "
           "controls, search everything, clean up data left behind by uninstalled modules, and "
           "compare settings between PixInsight instances or backups - without editing XML by "
           "hand."),
        Qt::PlainText, 6));
    column->addWidget(createText(
        tr("<b>How it protects your settings</b><ul style=\"margin-top:2px; margin-bottom:0px\">"
           "<li>It writes only while PixInsight is closed: PixInsight keeps its settings in memory "
           "and would overwrite the file.</li><li>Every save makes a timestamped backup, checks "
           "the result and replaces the file in one step.</li><li>Entries are deleted only when "
           "they are known to be safe to remove, and it asks first when they hold your saved "
           "configuration.</li></ul>"),
        Qt::RichText));
    column->addWidget(createText(
        tr("<span style=\"color:#e29600\"><b>Warning:</b></span> Not every entry in \"All "
           "settings (advanced)\" or the Health check is meant to be edited. Kestrane Settings "
           "Editor flags values that are out of range or unrecognized, and a backup is only a "
           "Restore away. But if you don't know what a setting does, it's better to leave it "
           "alone."),
        Qt::RichText, 6));
    column->addStretch();
    return column;
}

QLayout* AboutDialog::createButtons()
{
    m_copy = named(u"copy"_s, new QPushButton(tr("Copy details")));
    m_copy->setAutoDefault(false);
    connect(m_copy, &QPushButton::clicked, this, [this] {
        QGuiApplication::clipboard()->setText(m_details->toPlainText());
        m_copy->setText(tr("Copied"));
    });
    auto* ok = named(u"ok"_s, new QPushButton(tr("OK")));
    ok->setDefault(true);
    ok->setFocus();
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    auto* row = new QHBoxLayout;
    row->addWidget(m_copy);
    row->addStretch();
    row->addWidget(ok);
    return row;
}

void AboutDialog::updatePicture()
{
    QPixmap icon(u":/icons/kset-256.png"_s);
    if (icon.isNull()) {
        m_picture->hide();
        return;
    }
    const int side = int(std::lround(pictureSize * devicePixelRatio()));
    icon = icon.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    icon.setDevicePixelRatio(devicePixelRatio());
    m_picture->setPixmap(icon);
}

// Sets what doesn't follow the application's font and palette by itself, and the window's size.
void AboutDialog::updateLook()
{
    const double pointSize = QApplication::font().pointSizeF();
    QFont nameFont = QApplication::font();
    nameFont.setPointSizeF(pointSize * 1.7);
    nameFont.setWeight(QFont::Bold);
    m_name->setFont(nameFont);

    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setPointSizeF(pointSize * 0.9);
    m_details->setFont(fixed);
    m_details->setMinimumHeight(int(std::ceil(QFontMetricsF(fixed).lineSpacing() * 4.25)));

    QPalette quiet;
    quiet.setColor(QPalette::All, QPalette::WindowText,
                   QApplication::palette().color(QPalette::Disabled, QPalette::WindowText));
    m_notice->setPalette(quiet);

    // Windows and scroll areas don't ask wrapped texts for their height.
    const QSize available = screen()->availableGeometry().size() * 0.9;
    const int fontWidth = QFontMetrics(QApplication::font()).averageCharWidth() * 80;
    const int width = std::max(minimalWidth, std::min(fontWidth, available.width()));
    const QMargins margins = layout()->contentsMargins();
    const int headHeight =
        m_head->widget()->heightForWidth(width - margins.left() - margins.right());
    m_head->setFixedHeight(headHeight); // the details get the rest
    layout()->activate();
    const int detailsHint = m_details->sizeHint().height();
    const int rest = layout()->totalHeightForWidth(width) - detailsHint;
    const int detailsHeight = std::max(detailsHint, headHeight / 3 + 1); // by the stretch factors
    m_head->setMinimumHeight(0);
    layout()->activate(); // drops the minimum size that larger text needed
    resize(width, std::min(rest + detailsHeight, available.height()));
}

bool AboutDialog::event(QEvent* event)
{
    const bool handled = QDialog::event(event);
    if (changesPixelRatio(*event)) {
        updatePicture();
    }
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange) {
        updateLook();
    }
    return handled;
}

QString AboutDialog::buildDetails(const QString& path, const QString& pixinsightVersion)
{
    const QStringList lines{
        u"Kestrane Settings Editor %1 (source %2)"_s.arg(QStringLiteral(KSE_VERSION),
                                                         QStringLiteral(KSE_REVISION)),
        u"Qt %1"_s.arg(QLatin1String(qVersion())),
        u"System: %1 (%2)"_s.arg(QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture()),
        u"Open file: %1"_s.arg(path.isEmpty() ? u"none"_s : QDir::toNativeSeparators(path)),
        u"PixInsight recorded in the file: %1"_s.arg(
            pixinsightVersion.isEmpty() ? u"unknown"_s : pixinsightVersion),
        u"Settings folders searched: %1"_s.arg(PixInsightEnv::settingsFoldersText()),
    };
    return lines.join(u'\n');
}

QString recordedVersion(const XsdtDocument& document)
{
    const auto valueOf = [&document](const QString& key) {
        const XsdtNode* node = document.root.childByKey(key);
        const bool isValue = node && node->kind == XsdtNode::Kind::Value;
        return isValue ? displayValue(*node, node->value, shortLimit) : QString();
    };
    const QString version = valueOf(u"PixInsight"_s);
    const QString last = valueOf(u"LastVersion"_s);
    if (version.isEmpty() || last.isEmpty()) {
        return version + last;
    }
    return version + u" ["_s + last + u']';
}

} // namespace kse
