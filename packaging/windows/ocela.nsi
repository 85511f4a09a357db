; The installer: for one user, without administrator's rights. build.sh says what FOLDER, OUTPUT, VERSION and ICON are.
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
RequestExecutionLevel user
ManifestDPIAware true
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
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_FUNCTION startProgram
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "Russian"

LangString running ${LANG_ENGLISH} "Ocela is running. End it, then try again."
LangString running ${LANG_RUSSIAN} "Ocela запущена. Завершите её и повторите."

; A running program cannot be opened for writing.
!macro refuseWhileRunning
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

; All that an installer has put there, and nothing else: the folder may hold vendors' libraries, too.
!macro removeProgram
  Delete "$INSTDIR\Ocela.exe"
  Delete "$INSTDIR\Qt5*.dll"
  Delete "$INSTDIR\libgcc_s_seh-1.dll"
  Delete "$INSTDIR\libstdc++-6.dll"
  Delete "$INSTDIR\libwinpthread-1.dll"
  Delete "$INSTDIR\qt.conf"
  Delete "$INSTDIR\windows.md"
  RMDir /r "$INSTDIR\http"
  RMDir /r "$INSTDIR\licenses"
  RMDir /r "$INSTDIR\plugins"
  RMDir /r "$INSTDIR\translations"
!macroend

; From its own folder, where the pages are that it serves.
Function startProgram
  SetOutPath "$INSTDIR"
  Exec '"$INSTDIR\Ocela.exe"'
FunctionEnd

Section
  !insertmacro refuseWhileRunning
  !insertmacro removeProgram
  SetOutPath "$INSTDIR"
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
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" ${SIZE_KB}
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
