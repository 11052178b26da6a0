; The installer. makensis gets PARTS, a folder with the files of the program, of the virtual unit and of
; the tools, each in a folder of its own, and lists of them; VERSION, four numbers; QT, 6 or 5, on which it
; depends what Windows is asked for; OUTPUT, the file to write; and SIGN, a command that signs the
; uninstaller, or nothing.
;
; Silent: VornSettings-setup.exe /S [/UNIT | /DEMO] [/TOOLS] [/D=C:\Another folder]
;         (/D comes last, without quotes)
;         "C:\Program Files\VornSettings\uninstall.exe" /S
;
; A unit has a device library, board libraries and a calibration tool of its own, under the names of our
; stand-ins for them. What isn't ours is neither replaced nor removed, whatever is asked for.

Target amd64-unicode
SetCompressor /SOLID lzma
!include FileFunc.nsh
!include LogicLib.nsh
!include MUI2.nsh
!include TextFunc.nsh
!include WinVer.nsh

Name "VornSettings"
OutFile "${OUTPUT}"
BrandingText "VornSettings ${VERSION}"
InstallDir "$PROGRAMFILES64\VornSettings"
InstallDirRegKey HKLM "Software\VornSettings" "Folder" ; a newer one goes where the former is
RequestExecutionLevel admin
ManifestDPIAware true
!if "${SIGN}" != ""
    !uninstfinalize '${SIGN} "%1"' = 0
!endif

VIProductVersion "${VERSION}"
VIAddVersionKey "CompanyName" "Vorn"
VIAddVersionKey "ProductName" "VornSettings"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileVersion" "${VERSION}"
!if ${QT} == 5
    VIAddVersionKey "FileDescription" "VornSettings installer for Windows 7 and 8"
!else
    VIAddVersionKey "FileDescription" "VornSettings installer"
!endif
VIAddVersionKey "LegalCopyright" ""

InstType "A unit: the program alone, for the unit's own device library"
InstType "A demonstration: the program and a virtual unit"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_COMPONENTSPAGE_SMALLDESC
!define MUI_FINISHPAGE_RUN "$INSTDIR\VornSettings.exe"
!define MUI_PAGE_CUSTOMFUNCTION_SHOW showFinish
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\VornSettings"
!define OWN "Software\VornSettings"

; ${foreign} RESULT FILE: 1 if the file is there and doesn't say that it is ours, else 0
!macro foreign RESULT FILE
    Push "${FILE}"
    !ifdef __UNINSTALL__
        Call un.foreign
    !else
        Call foreign
    !endif
    Pop ${RESULT}
!macroend
!define foreign "!insertmacro foreign"

; versionText NAME: the text of that name in the version information at $3, in $5
!macro versionText NAME
    StrCpy $5 ""
    System::Call 'version::VerQueryValueW(p r3, w "\StringFileInfo\040904B0\${NAME}", *p .r4, *i .r2) i .r1'
    ${If} $1 <> 0
        System::Call 'kernel32::lstrcpynW(w .r5, p r4, i 256)'
    ${EndIf}
!macroend

!macro foreignFunction PREFIX
Function ${PREFIX}foreign
    Exch $0
    Push $1
    Push $2
    Push $3
    Push $4
    Push $5
    StrCpy $6 0
    ${If} ${FileExists} "$0"
        StrCpy $6 1
        System::Call 'version::GetFileVersionInfoSizeW(w r0, *i .r2) i .r1'
        ${If} $1 > 0
            System::Alloc $1
            Pop $3
            System::Call 'version::GetFileVersionInfoW(w r0, i 0, i r1, p r3) i .r2'
            ${If} $2 <> 0
                !insertmacro versionText ProductName
                ${If} $5 == "VornSettings"
                    !insertmacro versionText CompanyName
                    ${If} $5 == "Vorn"
                        StrCpy $6 0
                    ${EndIf}
                ${EndIf}
            ${EndIf}
            System::Free $3
        ${EndIf}
    ${EndIf}
    Pop $5
    Pop $4
    Pop $3
    Pop $2
    Pop $1
    StrCpy $0 $6
    Exch $0
FunctionEnd
!macroend
!insertmacro foreignFunction ""
!insertmacro foreignFunction "un."

; What a former installation left of the program and the tools, which another version may not know.
Function removeFormer
    ClearErrors
    FileOpen $0 "$INSTDIR\installed.txt" r
    ${IfNot} ${Errors}
        ${Do}
            FileRead $0 $1
            ${If} ${Errors}
                ${ExitDo}
            ${EndIf}
            ${TrimNewLines} $1 $1
            Delete "$INSTDIR\$1"
        ${Loop}
        FileClose $0
    ${EndIf}
FunctionEnd

Section "VornSettings" program
    SectionIn RO 1 2
    SetShellVarContext all
    Call removeFormer
    SetOutPath "$INSTDIR"
    File /r "${PARTS}/program/*"
    File "${PARTS}/installed.txt"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateShortcut "$SMPROGRAMS\VornSettings.lnk" "$INSTDIR\VornSettings.exe"
    WriteRegStr HKLM "${OWN}" "Folder" "$INSTDIR"
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

Section "Virtual unit" virtualunit
    SectionIn 2
    SetOutPath "$INSTDIR"
    !macro standIn NAME
        ${foreign} $0 "$INSTDIR\${NAME}"
        ${If} $0 = 0
            File "${PARTS}/virtualunit/${NAME}"
        ${EndIf}
    !macroend
    !include "${PARTS}/virtualunit.nsh"
SectionEnd

Section /o "Tools for whoever looks into a device library or a report" tools
    SetOutPath "$INSTDIR"
    File /r "${PARTS}/tools/*"
SectionEnd

; What was chosen, for the next version. A stand-in of a former demonstration would answer for the unit.
Section
    ${If} ${SectionIsSelected} ${virtualunit}
        WriteRegStr HKLM "${OWN}" "Kind" "demo"
    ${Else}
        WriteRegStr HKLM "${OWN}" "Kind" "unit"
        !macroundef standIn
        !macro standIn NAME
            ${foreign} $0 "$INSTDIR\${NAME}"
            ${If} $0 = 0
                Delete "$INSTDIR\${NAME}"
            ${EndIf}
        !macroend
        !include "${PARTS}/virtualunit.nsh"
    ${EndIf}
    ${If} ${SectionIsSelected} ${tools}
        WriteRegDWORD HKLM "${OWN}" "Tools" 1
    ${Else}
        WriteRegDWORD HKLM "${OWN}" "Tools" 0
    ${EndIf}
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
    !insertmacro MUI_DESCRIPTION_TEXT ${program} "The window, the system report and the factory reset. \
        They need the unit's own VornAux2.dll beside them or the virtual unit."
    !insertmacro MUI_DESCRIPTION_TEXT ${virtualunit} "A device library with a device made of software \
        behind it, and vornunit, its screwdriver. A device library that is there stays."
    !insertmacro MUI_DESCRIPTION_TEXT ${tools} "vorncheck, vornskeleton, vorntrace and vornreport, for the command line."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

; option NAME: in $0 whether the command line has it
!macro option NAME
    ClearErrors
    ${GetParameters} $1
    ${GetOptions} $1 "${NAME}" $2
    StrCpy $0 1
    ${If} ${Errors}
        StrCpy $0 0
    ${EndIf}
!macroend

; Qt doesn't start on older ones, and says so in words that help nobody.
Function refuseOlderWindows
    !if ${QT} == 5
        StrCpy $0 "This VornSettings needs Windows 7 with Service Pack 1, or a later Windows."
        ${If} ${AtLeastWin8}
            Return
        ${EndIf}
        ${If} ${IsWin7}
        ${AndIf} ${AtLeastServicePack} 1
            Return
        ${EndIf}
    !else
        StrCpy $0 "This VornSettings needs Windows 10 or later. \
            For Windows 7 and 8 there is VornSettings-${VERSION}-windows7-setup.exe."
        ; Wine says Windows 7 until it is told otherwise, and has what Qt asks for all the same.
        System::Call 'kernel32::GetModuleHandle(t "ntdll.dll") p .r1'
        System::Call 'kernel32::GetProcAddress(p r1, m "wine_get_version") p .r1'
        ${If} ${AtLeastWin10}
        ${OrIf} $1 P<> 0
            Return
        ${EndIf}
    !endif
    MessageBox MB_ICONSTOP|MB_OK $0 /SD IDOK
    SetErrorLevel 3
    Quit
FunctionEnd

; Without a word of the caller's: as before, and at first what is safe on a unit.
Function .onInit
    Call refuseOlderWindows
    SetRegView 64
    ReadRegStr $3 HKLM "${OWN}" "Kind"
    ReadRegStr $4 HKLM "${OWN}" "Folder"
    ${If} $3 == ""
    ${AndIf} $4 != ""
    ${AndIf} ${FileExists} "$4\VornAux2.dll"
        ; A version before those that note it, which always brought everything.
        ${foreign} $0 "$4\VornAux2.dll"
        ${If} $0 = 0
            StrCpy $3 "demo"
        ${EndIf}
    ${EndIf}
    !insertmacro option "/UNIT"
    StrCpy $5 $0
    !insertmacro option "/DEMO"
    ${If} $0 = 1
        ${If} $5 = 1
            MessageBox MB_ICONSTOP|MB_OK "Either /UNIT or /DEMO." /SD IDOK
            SetErrorLevel 2
            Quit
        ${EndIf}
        StrCpy $3 "demo"
    ${ElseIf} $5 = 1
        StrCpy $3 "unit"
    ${EndIf}
    ${If} $3 == "demo"
        SetCurInstType 1
    ${Else}
        SetCurInstType 0
    ${EndIf}
    ReadRegDWORD $3 HKLM "${OWN}" "Tools"
    !insertmacro option "/TOOLS"
    ${If} $0 = 1
    ${OrIf} $3 = 1
        SectionGetFlags ${tools} $0
        IntOp $0 $0 | ${SF_SELECTED}
        SectionSetFlags ${tools} $0
    ${EndIf}
FunctionEnd

; Without a device library there is nothing to run.
Function showFinish
    ${IfNot} ${FileExists} "$INSTDIR\VornAux2.dll"
        SendMessage $mui.FinishPage.Run ${BM_SETCHECK} ${BST_UNCHECKED} 0
        ShowWindow $mui.FinishPage.Run ${SW_HIDE}
    ${EndIf}
FunctionEnd

Function un.onInit
    SetRegView 64
FunctionEnd

Section Uninstall
    SetShellVarContext all
    SetOutPath "$TEMP" ; a folder that is somebody's current one can't go
    !macroundef standIn
    !macro standIn NAME
        ${foreign} $0 "$INSTDIR\${NAME}"
        ${If} $0 = 0
            Delete "$INSTDIR\${NAME}"
        ${EndIf}
    !macroend
    !include "${PARTS}/virtualunit.nsh"
    !include "${PARTS}/removal.nsh"
    Delete "$INSTDIR\installed.txt"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR" ; stays if it holds files of others
    Delete "$SMPROGRAMS\VornSettings.lnk"
    DeleteRegKey HKLM "${ENTRY}"
    DeleteRegKey HKLM "${OWN}"
SectionEnd
