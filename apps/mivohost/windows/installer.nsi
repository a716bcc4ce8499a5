; Installs for the user who runs it, without an administrator. scripts/windows --package calls it.
Target amd64-unicode
!include FileFunc.nsh
!include LogicLib.nsh

!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\mivohost"

Name "mivohost"
OutFile "${SETUP}"
RequestExecutionLevel user
SetCompressor /SOLID lzma
Icon "mivo.ico"
UninstallIcon "mivo.ico"
InstallDir "$LOCALAPPDATA\Programs\mivohost"
InstallDirRegKey HKCU "${UNINSTALL}" InstallLocation
VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "mivohost"
VIAddVersionKey FileDescription "mivohost"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey LegalCopyright ""

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

LoadLanguageFile "${NSISDIR}\Contrib\Language files\English.nlf"
LoadLanguageFile "${NSISDIR}\Contrib\Language files\SimpChinese.nlf"
LangString InUse 1033 "mivohost is running. Close it, and try again."
LangString InUse 2052 "mivohost 正在运行。请先将其关闭，然后重试。"
LangString RemoveSettings 1033 "Remove the settings, shortcuts, logs and automatically saved projects of mivohost as well? Other files in its folders stay."
LangString RemoveSettings 2052 "是否同时删除 mivohost 的设置、快捷键、日志和自动保存的项目？其文件夹中的其他文件将保留。"

; Its file cannot be written while the program runs.
!macro WaitForEnd
    ${Do}
        ClearErrors
        ${IfNot} ${FileExists} "$INSTDIR\mivohost.exe"
            ${ExitDo}
        ${EndIf}
        FileOpen $0 "$INSTDIR\mivohost.exe" a
        ${IfNot} ${Errors}
            FileClose $0
            ${ExitDo}
        ${EndIf}
        MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(InUse)" /SD IDCANCEL IDRETRY +2
        Abort
    ${Loop}
!macroend

Section
    ; Into a folder that holds something else goes one of our own, as names may be the same.
    ${GetFileName} "$INSTDIR" $1
    ${DirState} "$INSTDIR" $2
    ${If} $1 != "mivohost"
    ${AndIf} $2 = 1
    ${AndIfNot} ${FileExists} "$INSTDIR\mivohost.exe"
        StrCpy $INSTDIR "$INSTDIR\mivohost"
    ${EndIf}
    !insertmacro WaitForEnd
    ; What an older version had and this one has not; settings stay.
    ${If} ${FileExists} "$INSTDIR\mivohost.exe"
    ${AndIf} ${FileExists} "$INSTDIR\uninstall.exe"
        ExecWait '"$INSTDIR\uninstall.exe" /S /upgrade _?=$INSTDIR'
    ${EndIf}
    ; One that was installed into another folder.
    ReadRegStr $3 HKCU "${UNINSTALL}" InstallLocation
    ${If} $3 != ""
    ${AndIf} $3 != $INSTDIR
    ${AndIf} ${FileExists} "$3\mivohost.exe"
    ${AndIf} ${FileExists} "$3\uninstall.exe"
        ExecWait '"$3\uninstall.exe" /S /upgrade _?=$3' $4
        ${If} $4 <> 0 ; it runs there
            MessageBox MB_ICONEXCLAMATION "$(InUse)" /SD IDOK
            Abort
        ${EndIf}
        Delete "$3\uninstall.exe" ; which could not while it ran
        RMDir "$3"
    ${EndIf}
    SetOutPath "$INSTDIR"
    File /r "${STAGE}/*"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateShortcut "$SMPROGRAMS\mivohost.lnk" "$INSTDIR\mivohost.exe"
    WriteRegStr HKCU "${UNINSTALL}" DisplayName "mivohost"
    WriteRegStr HKCU "${UNINSTALL}" DisplayVersion "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL}" DisplayIcon "$INSTDIR\mivohost.exe"
    WriteRegStr HKCU "${UNINSTALL}" InstallLocation "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL}" UninstallString '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKCU "${UNINSTALL}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKCU "${UNINSTALL}" NoModify 1
    WriteRegDWORD HKCU "${UNINSTALL}" NoRepair 1
SectionEnd

Section Uninstall
    !insertmacro WaitForEnd
    !include "${FILES}"
    Delete "$INSTDIR\uninstall.exe"
    ${GetParameters} $1
    ClearErrors
    ${GetOptions} $1 "/upgrade" $2
    ${IfNot} ${Errors}
        Return
    ${EndIf}
    RMDir "$INSTDIR" ; unless it holds something else
    Delete "$SMPROGRAMS\mivohost.lnk"
    DeleteRegKey HKCU "${UNINSTALL}"
    ; Not the start at log-on of a copy that stands elsewhere.
    StrCpy $4 '"$INSTDIR\mivohost.exe"'
    StrLen $5 $4
    ReadRegStr $3 HKCU "Software\Microsoft\Windows\CurrentVersion\Run" mivohost
    StrCpy $3 $3 $5
    ${If} $3 == $4
        DeleteRegValue HKCU "Software\Microsoft\Windows\CurrentVersion\Run" mivohost
        DeleteRegValue HKCU "Software\Microsoft\Windows\CurrentVersion\Explorer\StartupApproved\Run" mivohost
    ${EndIf}
    MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "$(RemoveSettings)" /SD IDNO IDNO keep
    ; What the program writes there, and nothing that somebody else may have put beside it.
    StrCpy $0 "$APPDATA\mivo\mivohost"
    Delete "$0\settings.sqlite*"
    Delete "$0\machine-id"
    Delete "$0\mivohost*.log"
    Delete "$0\mivohost.lock"
    Delete "$0\.*.saving"
    Delete "$0\shows\*.sqlite*"
    Delete "$0\keptsettings\settings-*.json"
    Delete "$0\keptsettings\.*.saving"
    Delete "$0\projectbackups\*-????????-??????.mivo"
    Delete "$0\projectbackups\.*.saving"
    Delete "$0_Display\shortcut.json*"
    Delete "$0_Display\.*.saving"
    RMDir "$0\shows"
    RMDir "$0\keptsettings"
    RMDir "$0\projectbackups"
    RMDir "$0\playlog"
    RMDir "$0\cache"
    RMDir "$0\sharedfolder"
    RMDir "$0"
    RMDir "$0_Display"
    RMDir "$APPDATA\mivo"
keep:
SectionEnd
