; The installer: for one user, without administrator's rights.
; package.sh says what FOLDER, LIST, OUTPUT, VERSION and ICON are.
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
RequestExecutionLevel user
ManifestDPIAware true
; A file that cannot be written ends the installation, also a silent one.
AllowSkipFiles off
!include MUI2.nsh
!include LogicLib.nsh

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Ocela"

Name "Ocela"
BrandingText "Ocela ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\Ocela"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "Ocela"
VIAddVersionKey "CompanyName" "Velmora"
VIAddVersionKey "FileDescription" "Ocela installer"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" "Velmora"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE refuseForeignFolder
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_FUNCTION startProgram
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "Russian"

LangString running ${LANG_ENGLISH} "Ocela is running. End it, then try again."
LangString running ${LANG_RUSSIAN} "Ocela запущена. Завершите её и повторите."

LangString foreign ${LANG_ENGLISH} "This folder holds another program. Choose another folder."
LangString foreign ${LANG_RUSSIAN} "В этой папке находится другая программа. Выберите другую папку."

; A running program cannot be opened for writing.
!macro refuseWhileRunning
  SetFileAttributes "$INSTDIR\Ocela.exe" NORMAL
  ${DoWhile} ${FileExists} "$INSTDIR\Ocela.exe"
    ClearErrors
    FileOpen $0 "$INSTDIR\Ocela.exe" a
    ${IfNot} ${Errors}
      FileClose $0
      ${Break}
    ${EndIf}
    ${If} ${Cmd} `MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(running)" /SD IDCANCEL IDCANCEL`
      SetErrorLevel 2
      Abort
    ${EndIf}
  ${Loop}
!macroend

; What its installer put into the folder, as the list there says, folders after what they hold. All is removed by name and
; no folder with its contents: vendors' libraries, records and other files may lie beside.
!macro removeProgram
  FileOpen $0 "$INSTDIR\installed-files.txt" r
  ${Do}
    ClearErrors
    FileRead $0 $1
    ${If} ${Errors}
      ${Break}
    ${EndIf}
    ; Without the end of the line.
    StrCpy $1 $1 -1
    Delete "$INSTDIR\$1"
    RMDir "$INSTDIR\$1"
  ${Loop}
  FileClose $0
  Delete "$INSTDIR\installed-files.txt"
!macroend

; What would be overwritten there, and removed one day, would not be ours.
Function refuseForeignFolder
  ${If} ${FileExists} "$INSTDIR\installed-files.txt"
  ${OrIf} ${FileExists} "$INSTDIR\Ocela.exe"
    Return
  ${EndIf}
  ${If} ${FileExists} "$INSTDIR\uninstall.exe"
  ${OrIf} ${FileExists} "$INSTDIR\Qt5Core.dll"
  ${OrIf} ${FileExists} "$INSTDIR\qt.conf"
  ${OrIf} ${FileExists} "$INSTDIR\http\index.html"
    MessageBox MB_ICONEXCLAMATION "$(foreign)" /SD IDOK
    SetErrorLevel 2
    Abort
  ${EndIf}
FunctionEnd

; From its own folder, where the pages are that it serves.
Function startProgram
  SetOutPath "$INSTDIR"
  Exec '"$INSTDIR\Ocela.exe"'
FunctionEnd

Section "Ocela" program
  Call refuseForeignFolder
  !insertmacro refuseWhileRunning
  !insertmacro removeProgram
  SetOutPath "$INSTDIR"
  File "/oname=installed-files.txt" "${LIST}"
  File /r "${FOLDER}/*"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  ; Started in the output folder.
  CreateShortcut "$SMPROGRAMS\Ocela.lnk" "$INSTDIR\Ocela.exe"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "Ocela"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\Ocela.exe"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "Velmora"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  SectionGetSize ${program} $0
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" $0
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
SectionEnd

; Settings, logs and records stay.
Section Uninstall
  !insertmacro refuseWhileRunning
  !insertmacro removeProgram
  Delete "$INSTDIR\uninstall.exe"
  SetOutPath "$TEMP"
  RMDir "$INSTDIR"
  Delete "$SMPROGRAMS\Ocela.lnk"
  ; The program itself makes this one, when it is to start with the system.
  Delete "$SMSTARTUP\Ocela.lnk"
  DeleteRegKey HKCU "${UNINSTALL_KEY}"
SectionEnd
