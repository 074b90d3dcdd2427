; SPDX-License-Identifier: MIT
; The installer for the current user of 64-bit Windows. scripts/windows.sh defines:
;   VERSION       the program's version
;   FOLDER        what to install
;   SIZE          its size in KB
;   REMOVAL       a file with commands that delete exactly these files and folders from $INSTDIR
;   UNINSTALLER   the name of its uninstaller, which no other program in the folder may use
;   OUTPUT        the file to write
; Options: /S installs, or removes, without a window; /D=FOLDER, the last one and without quotation
; marks, names the folder. A status other than 0 means that nothing was installed.

Target amd64-unicode
RequestExecutionLevel user
ManifestDPIAware true
SetCompressor /SOLID lzma

!include LogicLib.nsh
!include FileFunc.nsh
!include WinVer.nsh
!include nsDialogs.nsh
!include MUI2.nsh

!define PROGRAM kestrane-settings-editor
!define TITLE "Kestrane Settings Editor"
!define PUBLISHER "Kestrane Settings Editor contributors"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${PROGRAM}"
!define OWN_NAME KestraneSettingsStudio ; of the program's registry keys and cache folder

Name "${TITLE}"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\${TITLE}"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" InstallLocation
AllowSkipFiles off
ShowInstDetails nevershow
ShowUninstDetails nevershow
BrandingText " "

VIProductVersion "${VERSION}.0"
VIAddVersionKey CompanyName "${PUBLISHER}"
VIAddVersionKey FileDescription "Installer of ${TITLE}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey LegalCopyright "MIT licence"
VIAddVersionKey ProductName "${TITLE}"
VIAddVersionKey ProductVersion "${VERSION}"

!define MUI_ICON "${PROGRAM}.ico"
!define MUI_UNICON "${PROGRAM}.ico"
!define MUI_FINISHPAGE_RUN "$INSTDIR\${PROGRAM}.exe"
!define MUI_FINISHPAGE_RUN_TEXT "&Start ${TITLE} now"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
UninstPage custom un.createChoice un.readChoice
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

Var choiceBox
Var removesSettings

; Goes on when the program in `folder` isn't running: Windows lets nobody write to a running .exe.
!macro awaitEnd folder
    ${Do}
        ${IfNotThen} ${FileExists} "${folder}\${PROGRAM}.exe" ${|} ${ExitDo} ${|}
        ClearErrors
        FileOpen $R0 "${folder}\${PROGRAM}.exe" a
        ${IfNot} ${Errors}
            FileClose $R0
            ${ExitDo}
        ${EndIf}
        ${If} ${Cmd} `MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION \
            "${TITLE} is running.$\r$\n$\r$\nClose it, then click Retry." /SD IDCANCEL IDCANCEL`
            Abort "${TITLE} is running. Nothing was changed."
        ${EndIf}
    ${Loop}
!macroend

Function .onInit
    ${IfNot} ${AtLeastWin10}
        MessageBox MB_ICONSTOP "${TITLE} needs Windows 10 or newer." /SD IDOK
        Abort
    ${EndIf}
FunctionEnd

Section
    ReadRegStr $0 HKCU "${UNINSTALL_KEY}" InstallLocation
    ${IfThen} $0 == "" ${|} StrCpy $0 $INSTDIR ${|}
    !insertmacro awaitEnd $0
    !insertmacro awaitEnd $INSTDIR

    ; The installed version knows which files it has put there. Only the registry knows its
    ; uninstaller: one that merely lies in the folder may be another program's.
    ReadRegStr $1 HKCU "${UNINSTALL_KEY}" UninstallString
    StrCpy $1 $1 -1 1 ; without its quotation marks
    ${If} ${FileExists} $1
    ${AndIf} ${FileExists} "$0\${PROGRAM}.exe"
        DetailPrint "Removing the installed version"
        ExecWait '"$1" /S /UPGRADE _?=$0' $2
        ${If} $2 != 0
            Abort "The installed version could not be removed."
        ${EndIf}
        Delete $1 ; which couldn't delete itself
        RMDir "$0"
    ${EndIf}

    SetOutPath "$INSTDIR"
    File /r "${FOLDER}/*"
    WriteUninstaller "$INSTDIR\${UNINSTALLER}"
    CreateShortcut "$SMPROGRAMS\${TITLE}.lnk" "$INSTDIR\${PROGRAM}.exe"

    WriteRegStr HKCU "${UNINSTALL_KEY}" DisplayName "${TITLE}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" Publisher "${PUBLISHER}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" DisplayIcon "$INSTDIR\${PROGRAM}.exe"
    WriteRegStr HKCU "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\${UNINSTALLER}"'
    WriteRegStr HKCU "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\${UNINSTALLER}" /S'
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" EstimatedSize ${SIZE}
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" NoModify 1
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" NoRepair 1
SectionEnd

Function un.createChoice
    !insertmacro MUI_HEADER_TEXT "Remove ${TITLE}" "PixInsight isn't touched."
    nsDialogs::Create 1018
    Pop $0
    ${NSD_CreateLabel} 0 0 100% 20u "PixInsight's settings files and their backups stay as they are."
    Pop $0
    ${NSD_CreateCheckBox} 0 24u 100% 12u \
        "&Also remove the program's own settings, such as its theme, and its downloaded ads"
    Pop $choiceBox
    GetDlgItem $0 $HWNDPARENT 1 ; the button that goes on
    SendMessage $0 ${WM_SETTEXT} 0 "STR:$(^UninstallBtn)"
    nsDialogs::Show
FunctionEnd

Function un.readChoice
    ${NSD_GetState} $choiceBox $removesSettings
FunctionEnd

Section un.
    !insertmacro awaitEnd $INSTDIR
    !include "${REMOVAL}"

    ; The installer of another version goes on to write the rest.
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/UPGRADE" $1
    ${IfNotThen} ${Errors} ${|} Return ${|}

    Delete "$INSTDIR\${UNINSTALLER}"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\${TITLE}.lnk"
    Delete "$TEMP\KestraneSettingsEditor-Help.html" ; the user guide, as it was last shown
    DeleteRegKey HKCU "${UNINSTALL_KEY}"

    ${If} $removesSettings == ${BST_CHECKED}
        DeleteRegKey HKCU "Software\${OWN_NAME}\${OWN_NAME}"
        DeleteRegKey /ifempty HKCU "Software\${OWN_NAME}"
        RMDir /r "$LOCALAPPDATA\${OWN_NAME}\${OWN_NAME}\cache"
        RMDir "$LOCALAPPDATA\${OWN_NAME}\${OWN_NAME}"
        RMDir "$LOCALAPPDATA\${OWN_NAME}"
    ${EndIf}
SectionEnd
