// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "app/ThemeManager.h"
#ifdef Q_OS_WIN
#include "app/WindowsLook.h"
#endif

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QIcon>

#ifdef __GLIBC__
#include <malloc.h>
#endif

using namespace Qt::StringLiterals;

namespace {

QIcon applicationIcon()
{
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256, 512}) {
        icon.addFile(u":/icons/kset-%1.png"_s.arg(size), QSize(size, size));
    }
    return icon;
}

} // namespace

int main(int argc, char** argv)
{
#ifdef __GLIBC__
    // One heap for all threads: a second thread builds the tree, whose memory the first one wants
    // to use again after it has destroyed the tree.
    mallopt(M_ARENA_MAX, 1);
#endif
    QApplication application(argc, argv);
    QApplication::setOrganizationName(u"KestraneSettingsStudio"_s);
    QApplication::setApplicationName(u"KestraneSettingsStudio"_s);
    QApplication::setApplicationDisplayName(u"Kestrane Settings Editor"_s);
    QApplication::setApplicationVersion(QStringLiteral(KSE_VERSION));
    QApplication::setWindowIcon(applicationIcon());

    QCommandLineParser parser;
    parser.setApplicationDescription(u"Edit PixInsight settings safely."_s);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(u"file"_s, u"Settings file to open (default: the one found in the "
                                            u"PixInsight config directory)."_s);
    const QCommandLineOption screenshots(
        u"screenshots"_s, u"Render the pages to PNG files in <dir> and exit (for layout checks)."_s,
        u"dir"_s);
    const QCommandLineOption screenshotSearch(
        u"screenshot-search"_s, u"Search text applied before rendering the Preferences pages."_s,
        u"text"_s);
    const QCommandLineOption theme(
        u"theme"_s, u"Use this theme for this run only: light, dark or system."_s, u"name"_s);
    const QCommandLineOption fontScale(
        u"font-scale"_s, u"Use this text size scale for this run only (default 1.25)."_s,
        u"factor"_s);
    parser.addOptions({screenshots, screenshotSearch, theme, fontScale});
    parser.process(application);

    using kse::MainWindow;
    kse::ThemeManager& manager = kse::ThemeManager::instance();
    manager.init(true);
    if (parser.isSet(theme)) {
        manager.overrideMode(parser.value(theme));
    }
    if (parser.isSet(fontScale)) {
        manager.overrideFontScale(parser.value(fontScale));
    }

#ifdef Q_OS_WIN
    const kse::WindowsLook look(manager);
#endif

    const bool rendersScreenshots = parser.isSet(screenshots);
    MainWindow window(rendersScreenshots ? MainWindow::Messages::StandardError
                                         : MainWindow::Messages::Boxes);
    const QStringList arguments = parser.positionalArguments();
    if (!arguments.isEmpty()) {
        window.openFile(QFileInfo(arguments.first()).absoluteFilePath());
    }
    if (rendersScreenshots) {
        window.startBanner(false, 0);
        window.renderScreenshots(parser.value(screenshots), parser.value(screenshotSearch));
        return 0;
    }
    window.show();
    window.startBanner(true, 100);
    return QApplication::exec();
}
