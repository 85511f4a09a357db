; The installer. It installs for one user, without administrator rights.
; package.sh defines FOLDER, LIST, OUTPUT, VERSION and ICON.
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
RequestExecutionLevel user
ManifestDPIAware true
; A file that cannot be written aborts the installation.
AllowSkipFiles off
!include MUI2.nsh
!include LogicLib.nsh
!include nsDialogs.nsh
!include FileFunc.nsh

; The settings of the program. If the file exists, the installer does not change it.
!define SETTINGS "$LOCALAPPDATA\Velmora\OcelaSettings.xml"
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
Page custom showAccessPage leaveAccessPage
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_FUNCTION startProgram
!define MUI_FINISHPAGE_TEXT "$(finishText)"
; The second check box of the page.
!define MUI_FINISHPAGE_SHOWREADME
!define MUI_FINISHPAGE_SHOWREADME_NOTCHECKED
!define MUI_FINISHPAGE_SHOWREADME_TEXT "$(desktopShortcut)"
!define MUI_FINISHPAGE_SHOWREADME_FUNCTION createDesktopShortcut
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "Russian"

LangString running ${LANG_ENGLISH} "Ocela is running. Close it, then try again."
LangString running ${LANG_RUSSIAN} "Ocela запущена. Завершите её и повторите."

LangString foreign ${LANG_ENGLISH} "This folder holds another program. Choose another folder."
LangString foreign ${LANG_RUSSIAN} "В этой папке находится другая программа. Выберите другую папку."

LangString accessTitle ${LANG_ENGLISH} "Who may use Ocela on this computer?"
LangString accessTitle ${LANG_RUSSIAN} "Кому доступна Ocela на этом компьютере?"

LangString accessText ${LANG_ENGLISH} "Programs can read the gaze and control Ocela over the network, \
without a password. You can change this later in Ocela: Settings, Access."
LangString accessText ${LANG_RUSSIAN} "Программы могут читать данные взгляда и управлять Ocela по сети, \
без пароля. Позже это можно изменить в Ocela: «Настройки», «Доступ»."

LangString thisComputer ${LANG_ENGLISH} "Programs on &this computer only"
LangString thisComputer ${LANG_RUSSIAN} "Только программам на &этом компьютере"

LangString otherComputers ${LANG_ENGLISH} "Programs on &other computers, too"
LangString otherComputers ${LANG_RUSSIAN} "И программам на &других компьютерах"

LangString notSaved ${LANG_ENGLISH} "This file cannot be written: ${SETTINGS}"
LangString notSaved ${LANG_RUSSIAN} "Не удаётся записать файл: ${SETTINGS}"

; The label of the page has room for five lines.
LangString finishText ${LANG_ENGLISH} "Ocela is installed.$\r$\n$\r$\nOptional, for the Lab Streaming Layer (LSL): copy \
lsl.dll beside Ocela.exe. See docs\lab.md in the same folder."
LangString finishText ${LANG_RUSSIAN} "Ocela установлена.$\r$\n$\r$\nНеобязательно, для Lab Streaming Layer (LSL): скопируйте \
lsl.dll в папку с Ocela.exe. См. docs\lab.md в этой папке."

LangString desktopShortcut ${LANG_ENGLISH} "&Desktop shortcut"
LangString desktopShortcut ${LANG_RUSSIAN} "&Ярлык на рабочем столе"

!define DASHBOARD_ENGLISH "Ocela Dashboard"
!define DASHBOARD_RUSSIAN "Веб-панель Ocela"
LangString dashboard ${LANG_ENGLISH} "${DASHBOARD_ENGLISH}"
LangString dashboard ${LANG_RUSSIAN} "${DASHBOARD_RUSSIAN}"

Var localOnly  ; 1 if only programs on this computer may use Ocela
Var thisComputerButton
Var wantsDesktopShortcut  ; 1 if the command line has /DESKTOP=1

; /LOCALONLY=1 and /LOCALONLY=0 on the command line are the choice of an installation without questions, and the
; preselected choice of an installation with questions.
Function .onInit
  ${IfNot} ${Silent}
    StrCpy $localOnly 1
  ${EndIf}
  ${GetParameters} $0
  ${GetOptions} $0 "/DESKTOP=" $wantsDesktopShortcut
  ClearErrors
  ${GetOptions} $0 "/LOCALONLY=" $1
  ${IfNot} ${Errors}
    StrCpy $localOnly $1
  ${EndIf}
FunctionEnd

Function showAccessPage
  ${If} ${FileExists} "${SETTINGS}"
    Abort
  ${EndIf}
  !insertmacro MUI_HEADER_TEXT "$(accessTitle)" ""
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateLabel} 0 0 100% 36u "$(accessText)"
  Pop $0
  ${NSD_CreateRadioButton} 0 44u 100% 12u "$(thisComputer)"
  Pop $thisComputerButton
  ${NSD_CreateRadioButton} 0 60u 100% 12u "$(otherComputers)"
  Pop $0
  ${If} $localOnly == 1
    ${NSD_Check} $thisComputerButton
  ${Else}
    ${NSD_Check} $0
  ${EndIf}
  nsDialogs::Show
FunctionEnd

Function leaveAccessPage
  ${NSD_GetState} $thisComputerButton $0
  ${If} $0 == ${BST_CHECKED}
    StrCpy $localOnly 1
  ${Else}
    StrCpy $localOnly 0
  ${EndIf}
FunctionEnd

; The program sets all other settings to their defaults. By default, other computers may use it. If the choice cannot be
; saved, the program must not start with the system: it would let other computers use it.
Function saveAccess
  ${If} $localOnly != 1
  ${OrIf} ${FileExists} "${SETTINGS}"
    Return
  ${EndIf}
  CreateDirectory "$LOCALAPPDATA\Velmora"
  ClearErrors
  FileOpen $0 "${SETTINGS}" w
  FileWrite $0 '<?xml version="1.0" encoding="UTF-8"?>$\r$\n<settings version="1">$\r$\n'
  FileWrite $0 '    <property name="AllowOtherComputers">false</property>$\r$\n</settings>$\r$\n'
  FileClose $0
  ${If} ${Errors}
    Delete "${SETTINGS}"
    Delete "$SMSTARTUP\Ocela.lnk"
    MessageBox MB_ICONEXCLAMATION "$(notSaved)" /SD IDOK
    SetErrorLevel 2
    Abort
  ${EndIf}
FunctionEnd

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

; Removes the files and empty folders in installed-files.txt. Vendor libraries, record files and other files that a user
; has put into the folder stay.
!macro removeProgram
  FileOpen $0 "$INSTDIR\installed-files.txt" r
  ${Do}
    ClearErrors
    FileRead $0 $1
    ${If} ${Errors}
      ${Break}
    ${EndIf}
    ; Remove the line end.
    StrCpy $1 $1 -1
    Delete "$INSTDIR\$1"
    RMDir "$INSTDIR\$1"
  ${Loop}
  FileClose $0
  Delete "$INSTDIR\installed-files.txt"
!macroend

; Refuses a folder with another program, whose files would be overwritten, and later removed by the uninstaller.
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

; The program serves the web pages from its working directory.
Function startProgram
  SetOutPath "$INSTDIR"
  Exec '"$INSTDIR\Ocela.exe"'
FunctionEnd

; A shortcut's working directory is the output folder.
Function createDesktopShortcut
  SetOutPath "$INSTDIR"
  CreateShortcut "$DESKTOP\Ocela.lnk" "$INSTDIR\Ocela.exe"
FunctionEnd

; An earlier version may have been installed in another language.
!macro removeDashboardShortcut
  Delete "$SMPROGRAMS\${DASHBOARD_ENGLISH}.lnk"
  Delete "$SMPROGRAMS\${DASHBOARD_RUSSIAN}.lnk"
!macroend

Section "Ocela" program
  Call refuseForeignFolder
  !insertmacro refuseWhileRunning
  !insertmacro removeProgram
  SetOutPath "$INSTDIR"
  File "/oname=installed-files.txt" "${LIST}"
  File /r "${FOLDER}/*"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  CreateShortcut "$SMPROGRAMS\Ocela.lnk" "$INSTDIR\Ocela.exe"
  !insertmacro removeDashboardShortcut
  CreateShortcut "$SMPROGRAMS\$(dashboard).lnk" "$INSTDIR\Ocela.exe" "--dashboard"
  ${If} $wantsDesktopShortcut == 1
    Call createDesktopShortcut
  ${EndIf}
  ; "Start with the system" is on by default.
  ${IfNot} ${FileExists} "${SETTINGS}"
    CreateShortcut "$SMSTARTUP\Ocela.lnk" "$INSTDIR\Ocela.exe"
  ${EndIf}
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
  ; Last, because it is the only step after the copy that can abort. An installation that is repeated must find no settings:
  ; they would suppress the question, and the shortcut above.
  Call saveAccess
SectionEnd

; Settings, logs and record files stay.
Section Uninstall
  !insertmacro refuseWhileRunning
  !insertmacro removeProgram
  Delete "$INSTDIR\uninstall.exe"
  SetOutPath "$TEMP"
  RMDir "$INSTDIR"
  Delete "$SMPROGRAMS\Ocela.lnk"
  Delete "$DESKTOP\Ocela.lnk"
  !insertmacro removeDashboardShortcut
  ; The program also creates this shortcut, when "Start with the system" is switched on.
  Delete "$SMSTARTUP\Ocela.lnk"
  DeleteRegKey HKCU "${UNINSTALL_KEY}"
SectionEnd
