// SPDX-License-Identifier: MIT
#include "SampleTables.h"

#include <iterator>

namespace kse {

// In several pieces, since compilers limit the length of one literal.
const char* const sampleTable[] = {
    R"TABLE([Global/Preferences/Application]
AsteroidEphemeridesFile s @ephemerides_dir/asteroids.xeph
AutoSaveSettingsPeriod i 0
AutoUIScaling b false
BaseDirectory s /opt/PixInsight
BinDirectory s /opt/PixInsight/bin
CIP_ITRSDataFile s /data/astro/tables/cip-itrs.txt
CompressSettingsBlocks b true
ConfigDirectory s /home/ana/.config/Pleiades
DeltaATDataFile s @astronomy_dir/delta-at.txt
DeltaTDataFile s @astronomy_dir/delta-t.txt
FiltersDatabaseFile s /opt/PixInsight/library/filters.xspd
FontResolution i 96
FundamentalEphemeridesFile s @ephemerides_dir/fundamental.xeph
HealRegistryInformationOnUpdates b false
HighResFont s Noto Sans
HighResMonoFont s Noto Sans Mono
Instance i 1
LowResFont s DejaVu Sans
LowResMonoFont s DejaVu Sans Mono
MessageBoxOkCancelButtonOrder i 0
MessageBoxYesNoButtonOrder i 0
MinifySettingsXML b false
NutationModelFile s @ephemerides_dir/nutation.xeph
ResourceFile01 s /opt/PixInsight/rsc/rcc/core/icons.rcc
ResourceFile02 s /opt/PixInsight/rsc/rcc/core/cursors.rcc
ResourceFile03 s
ResourceFile04 s
ResourceFile05 s
ResourceFile06 s
ResourceFile07 s
ResourceFile08 s
ResourceFile09 s
ResourceFile10 s
ShortTermAsteroidEphemeridesFile s @ephemerides_dir/asteroids-st.xeph
ShortTermFundamentalEphemeridesFile s @ephemerides_dir/fundamental-st.xeph
ShortTermNutationModelFile s @ephemerides_dir/nutation-st.xeph
StartJD F 2461111.251898
StartTime s 2026-03-11T18:02:44Z
StyleSheetFile s /opt/PixInsight/rsc/qss/core-standard.qss
SurfaceSwapInterval i 1
UIScalingFactor F 1.25
WhiteReferencesDatabaseFile s /opt/PixInsight/library/white-references.xspd
)TABLE",
    R"TABLE([Global/Preferences/MainWindow]
AcceptDroppedFiles b true
ActiveWindowOpacity F 1
AnimateCombo b true
AnimateMenu b false
AnimateToolBox b false
AnimateToolTip b true
AnimateWindows b false
AutoHideWindowOpacity F 0.85
CapitalizedMenuBars b true
CheckForUpdatesAtStartup b true
ConfirmProgramTermination b false
DesktopSettingsAware b false
DoubleClickLaunchesOpenDialog b false
DropShadowBlurRadius F 12.5
DropShadowChildWindows b false
DropShadowColor u 2852126720
DropShadowIcons b true
ExpandFavoritesAtStartup b false
ExpandMostUsedAtStartup b true
ExpandRecentlyUsedAtStartup b true
ExplodeIcons b true
FadeAutoHideWindows b true
FadeMenu b true
FadeToolTip b true
FadeWindows b false
FadeWorkspaces b true
FullScreenAtStartup b false
HighQualityWallpapers b true
HoverableAutoHideWindows b true
ImplodeIcons b true
InactiveChildWindowOpacity F 1.4
InactiveWindowOpacity F 0.95
MaxRecentFiles i 24
MaximizeAtStartup b true
MovingChildWindowOpacity F 0.7
MovingWindowOpacity F 0.7
NativeMenuBar b true
OpenResourcesOnNewWebBrowserWindows b false
OpenURLsWithInternalBrowser b true
PrivateWebBrowsingMode b true
ShowFavorites b false
ShowMostUsed b true
ShowRecentlyUsed b true
ShowSplashAtStartup b true
ShowViewListImageThumbnails b true
ShowWorkspaceThumbnails b true
TranslucentAutoHideWindows b false
TranslucentChildWindows b false
TranslucentWindows b true
UseWallpapers b true
WallpaperFile01 s /opt/PixInsight/rsc/wallpapers/dusk.jpg
WallpaperFile02 s /media/ana/AURORA/wallpapers/Nordlicht über Tromsø.png
WallpaperFile03 s
WallpaperFile04 s
WallpaperFile05 s
WallpaperFile06 s
WallpaperFile07 s
WallpaperFile08 s
WallpaperFile09 s
WallpaperFile10 s
WindowButtonsOnTheLeft b true
)TABLE",
    R"TABLE([Global/Preferences/ImageWindow]
BackupFiles b false
ClonePostfix s _clone
CreatePreviewsFromCoreProperties b false
CursorTolerance i 4
Default24BitScreenLUT b false
DefaultEmbedProperties b false
DefaultEmbedThumbnails b true
DefaultFileExtension s .xisf
DefaultHorizontalResolution F 72
DefaultMaskMode i 2
DefaultMasksShown b true
DefaultMetricResolution b true
DefaultTransparencyMode i 1
DefaultVerticalResolution F 72
DownloadsDirectory s /home/ana/Téléchargements/astro
FastScreenRenditionThreshold i 24
FastScreenRenditions b true
FileFormatWarnings b false
FollowDownloadLocations b false
HighDPIRenditions b false
ImageThumbnailSize i 400
LoadAstrometricSolutions b false
LoadInitialProcessingFromCoreProperties b false
MeasureScreenRenderingPerformance b true
NativeFileDialogs b false
NewImageCaption s * <new image>
PinchSensitivity F 24.5
Prefix s Image
ProjectThumbnailSize i 256
ProjectVerifyIncrementalChecksums b true
ProxyURL s
RememberFileOpenType b false
RememberFileSaveType b true
ShowActiveSTFIndicators b false
ShowCaptionCurrentChannels b true
ShowCaptionFullPaths b true
ShowCaptionIdentifiers b false
ShowCaptionZoomRatios b true
ShowSynchronizationIndicators b true
ShowSynchronizationVectors b true
ShowViewSelectorImageThumbnails b false
StrictFileSaveMode b true
SwapCompression b false
TouchEvents b true
UseFileNamesAsImageIdentifiers b false
VerboseNetworkOperations b true
WheelDirection i -1
WheelStepAngle u 15
ZoomAtCursor b true
)TABLE",
    R"TABLE([Global/ColorManagement]
DefaultEmbedProfilesInGrayscaleImages b true
DefaultEmbedProfilesInRGBImages b true
DefaultGamutCheckEnabled b false
DefaultGrayscaleProfilePath s /usr/share/color/icc/gray-gamma22.icc
DefaultProofingEnabled b true
DefaultRGBProfilePath s /usr/share/color/icc/sRGB.icc
DefaultRenderingIntent i 0
GamutWarningColor u 4289374890
IsEnabled b true
IsValid b true
MonitorProfilePath s /home/ana/.color/icc/Büro links (D65).icc
OnMissingProfile i 1
OnProfileMismatch i 2
ProofingIntent i 7
ProofingProfilePath s /home/ana/.color/icc/Druckerei "Müller & Söhne".icc
UpdateMonitorProfile s
UseLowResolutionCLUTs b false
UseProofingBPC b true
[Global/Preferences/Process]
AlertOnProcessCompleted b true
AutoSavePSMPeriod i 60
BackupFiles b true
ConsoleCommandTruncationLimit i 2048
ConsoleDelay i 100
EnableCUDAAcceleration b true
EnableExecutionStatistics b false
EnableLaunchStatistics b true
EnableParallelCoreColorManagement b true
EnableParallelCoreRendering b true
EnableParallelModuleProcessing b true
EnableParallelProcessing b true
EnableThreadCPUAffinity b true
GenerateScriptComments b true
InitCUDARuntimeAtStartup b true
MaxConsoleLines i 4000
MaxFileReadThreads i 4
MaxFileWriteThreads i 2
MaxModuleThreadPriority i 5
MaxProcessors i 96
MaxUsageListLength i 20
PerformMallocTrimCalls i 1
VerifyScriptChecksums b true
[Global/Preferences/ProcessIcon]
Prefix s Process
[Global/Preferences/Security]
AllowInsecureRepositories b false
AllowUnsignedModuleInstallation b false
AllowUnsignedRepositories b true
AllowUnsignedScriptExecution b true
EnableLocalSigningIdentity b true
ReportModuleSignatures b true
ReportScriptSignatures b true
WarnOnUnsignedCodeExecution b false
[Global/Preferences/TransparencyBrush]
BackgroundColor u 4286611584
Brush i 3
DefaultColor u 4278190080
ForegroundColor u 4290822336
[Global/Preferences/ViewList]
NoPreviewSelectedText s <No Preview Selected>
NoPreviewsAvailableText s <No Previews Available>
NoViewSelectedText s <No View Selected>
NoViewsAvailableText s <No Views Available>
[Global/Preferences/Workspace]
IconGridSpacing i 16
Prefix s Workspace
PrimaryScreenCenterX i 1280
PrimaryScreenCenterY i 720
)TABLE",
    R"TABLE([Global/Preferences/GUI]
AccentColor u 4282090230
ConsoleBackground u 4280295456
ConsoleFont s DejaVu Sans Mono, 10
ConsoleForeground u 4292730333
HistogramColor1 u 4294198070
HistogramColor2 u 4283215696
HistogramColor3 u 4280391411
IconSize i 24
SmoothScrolling b true
ToolTipDelay i 700
[Global/Preferences/Identifiers]
AllowUnicode b false
MaxLength i 64
Separator s _
UniqueSuffix b true
[Global/Preferences/ScriptEditor]
AutoComplete b true
Background u 4280163870
BracketColor u 4294951424
Comment1Foreground u 4284900966
Font s DejaVu Sans Mono
FontSize i 11
Foreground u 4292664540
HighlightCurrentLine b true
IncludeDirectory s /home/ana/src/scripts
KeywordForeground u 4283473366
LineNumbers b true
StringForeground u 4291728344
TabWidth i 3
TemplateFile s /home/ana/src/scripts/header.tmpl
[Global/RGBWorkingSpace]
ColorantX1 f 0.648431
ColorantX2 f 0.321152
ColorantX3 f 0.155886
ColorantY1 f 0.330856
ColorantY2 f 0.597871
ColorantY3 f 0.066044
Gamma f 22
Luminance1 f 0.311114
Luminance2 f 0.621662
Luminance3 f 0.067224
sRGBGamma b false
[Global/ReadoutOptions]
BroadcastEnabled b true
ColorSpace i 2
GridColor u 4286578943
Integer b false
Precision i 4
PreviewSize i 15
ProbeSize i 3
RealRange u 65535
ShowAlphaChannel b true
ShowEquatorialCoordinates b true
ShowMaskChannel b false
[Global/UpdateManager]
CheckInterval i 7
LastCheck t 2026-03-09T19:12:07Z
[Global/UpdateManager/Repositories/Kestmere nightly]
Enabled b false
Secure b false
Title s Nightly builds – use at your own risk
URL s http://nightly.kestmere.example/repo/?os=linux&arch=x64
[Global/UpdateManager/Repositories/Main]
Enabled b true
Secure b true
Title s Main repository
URL s https://updates.example/main/
[Global/UpdateManager/Repositories/Ostrand]
Enabled b true
Secure b true
Title s Ostrand modules
URL s https://ostrand.example/pi/
)TABLE",
    R"TABLE([CentralWidgetClients/ProcessConsole]
Height i 420
Left i 12
Top i 64
Visible b true
Width i 760
[CentralWidgetClients/ProcessExplorer]
Height i 980
Left i 0
Top i 64
Visible b true
Width i 360
[CentralWidgetClients/ViewExplorer]
Height i 980
Left i 0
Top i 64
Visible b false
Width i 300
[DontShowAgain]
AboutColorManagement b true
CloseUnsavedPreview b true
ConfirmIconDeletion b true
FirstRunTour b true
OverwriteXISF b false
UnsignedScript b true
Über Kompression (§ 3) b true
[ExtensibleWidgets/History]
Detached b true
Height i 600
Left i 2010
Top i 120
Width i 420
[ExtensibleWidgets/Readout]
Detached b false
Height i 90
Left i 0
Top i 1350
Width i 2560
[FileExplorer]
ColumnWidths s 280,90,140
CurrentDirectory s /data/astro/2026
Filter s *.xisf;*.fit;*.fits
Height i 800
ShowHidden b false
SortColumn i 2
Width i 640
[FloatingInstanceInfoViewer]
Height i 520
Left i 1440
Top i 300
Width i 380
[FloatingSourceEditor]
Height i 700
Left i 900
Top i 180
Width i 800
[MainWindow]
Maximized b true
[MainWindow/Geometry]
Height i 1408
Left i 0
Screen i 0
Top i 32
Width i 2560
[MainWindow/Workspace]
Count i 4
Current i 1
Name1 s Workspace01
Name2 s Kalibrierung
Name3 s Mosaïque
Name4 s 星雲
[PixelClipboard]
Channels i 3
Value1 F 0.02734
Value2 F 0.03125
Value3 F 0.0302734375
[ThreadPerformanceOptimization]
BestThreadCount i 14
Finished t 2025-11-02T23:51:40Z
Score1 F 1.84
Score2 F 3.51
Score3 F 6.9
Score4 F 11.25
Score5 F 11.1
[ModuleData/0]
CoreBlockVersion u 3
LastSession t 2026-03-11T18:02:44Z
Seed u 2654435769
ShutdownClean b true
[Global/FileDialogs/OpenImage]
Directory s /data/astro/2026/NGC 7000 & IC 5070/lights
Filter s FITS files (*.fit *.fits *.fts)
ViewMode i 1
[Global/FileDialogs/OpenProject]
Directory s /data/astro/projects
Filter s
ViewMode i 0
[Global/FileDialogs/SaveImage]
Directory s /data/astro/results/"final"
Filter s XISF files (*.xisf)
ViewMode i 1
[Global/FileDialogs/SaveScript]
Directory s /home/ana/src/scripts
Filter s Scripts (*.js)
ViewMode i 1
)TABLE",
};
const int sampleTableSize = static_cast<int>(std::size(sampleTable));

const char* const secondInstanceTable = R"TABLE([Global/Preferences/Application]
AutoSaveSettingsPeriod i 120
FontResolution i 120
Instance i 2
StartTime s 2026-03-11T20:40:13Z
UIScalingFactor F 1
[Global/Preferences/GUI]
AccentColor u 4294944550
IconSize i 32
[Global/Preferences/ImageWindow]
DefaultMaskMode i 4
DefaultTransparencyMode i 0
DownloadsDirectory s /data/astro/downloads
WheelStepAngle u 30
[Global/Preferences/MainWindow]
AnimateCombo b false
DropShadowColor u 4278190080
InactiveChildWindowOpacity F 0.9
WallpaperFile02 s
[Global/Preferences/Process]
MaxProcessors i 8
MaxConsoleLines i 2500
[Global/Preferences/ScriptEditor]
FontSize i 13
TabWidth i 4
[Global/Preferences/Security]
AllowUnsignedRepositories b false
[Global/ColorManagement]
DefaultRenderingIntent i 1
ProofingIntent i 2
[Global/RGBWorkingSpace]
Gamma f 2.2
[Global/ReadoutOptions]
Precision i 5
ProbeSize i 7
[MainWindow/Geometry]
Height i 1040
Left i 2560
Screen i 1
Width i 1920
[ModuleData/0]
LastSession t 2026-03-11T20:40:13Z
Seed u 3141592653
[ModuleData/Ostrand]
Profile s Zweitgerät
[Global/UpdateManager/Repositories/Quillon beta]
Enabled b true
Secure b true
Title s Quillon <beta>
URL s https://beta.quillon.example/
)TABLE";

} // namespace kse
