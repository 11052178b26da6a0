; The installer. makensis gets FOLDER, what to install; VERSION, four numbers; OUTPUT, the file to
; write; and REMOVAL, a file of instructions that delete just what was installed.
;
; Silent: VornSettings-setup.exe /S [/D=C:\Another folder]     (/D comes last, without quotes)
;         "C:\Program Files\VornSettings\uninstall.exe" /S

Target amd64-unicode
SetCompressor /SOLID lzma
!include MUI2.nsh

Name "VornSettings"
OutFile "${OUTPUT}"
BrandingText "VornSettings ${VERSION}"
InstallDir "$PROGRAMFILES64\VornSettings"
InstallDirRegKey HKLM "Software\VornSettings" "Folder" ; a newer one goes where the former is
RequestExecutionLevel admin
ManifestDPIAware true

VIProductVersion "${VERSION}"
VIAddVersionKey "CompanyName" "Vorn"
VIAddVersionKey "ProductName" "VornSettings"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "VornSettings installer"
VIAddVersionKey "LegalCopyright" ""

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_FINISHPAGE_RUN "$INSTDIR\VornSettings.exe"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\VornSettings"

Function .onInit
    SetRegView 64
FunctionEnd

Section
    SetShellVarContext all
    SetOutPath "$INSTDIR"
    File /r "${FOLDER}/*"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateShortcut "$SMPROGRAMS\VornSettings.lnk" "$INSTDIR\VornSettings.exe"
    WriteRegStr HKLM "Software\VornSettings" "Folder" "$INSTDIR"
    WriteRegStr HKLM "${ENTRY}" "DisplayName" "VornSettings"
    WriteRegStr HKLM "${ENTRY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKLM "${ENTRY}" "DisplayIcon" "$INSTDIR\VornSettings.exe"
    WriteRegStr HKLM "${ENTRY}" "Publisher" "Vorn"
    WriteRegStr HKLM "${ENTRY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKLM "${ENTRY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKLM "${ENTRY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKLM "${ENTRY}" "NoModify" 1
    WriteRegDWORD HKLM "${ENTRY}" "NoRepair" 1
SectionEnd

Function un.onInit
    SetRegView 64
FunctionEnd

Section Uninstall
    SetShellVarContext all
    SetOutPath "$TEMP" ; a folder that is somebody's current one can't go
    !include "${REMOVAL}"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR" ; stays if it holds files of others
    Delete "$SMPROGRAMS\VornSettings.lnk"
    DeleteRegKey HKLM "${ENTRY}"
    DeleteRegKey HKLM "Software\VornSettings"
SectionEnd
