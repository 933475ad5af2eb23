; The installer for Windows, for one user and without an administrator's rights. tools/package.sh defines VERSION, FILES
; (the folder to install), ICON and OUTPUT.
Target amd64-unicode
!include LogicLib.nsh
!include MUI2.nsh

!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Kelvora"
!define MENU "$SMPROGRAMS\Kelvora"

Name "Kelvora"
OutFile "${OUTPUT}"
RequestExecutionLevel user
ManifestDPIAware true
InstallDir "$LOCALAPPDATA\Programs\Kelvora"
InstallDirRegKey HKCU "${UNINSTALL}" "InstallLocation"
SetCompressor /SOLID lzma
BrandingText " "

VIProductVersion "${VERSION}.0"
VIAddVersionKey "CompanyName" "The Kelvora developers"
VIAddVersionKey "FileDescription" "Installs Kelvora, an arena game"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" ""
VIAddVersionKey "ProductName" "Kelvora"
VIAddVersionKey "ProductVersion" "${VERSION}"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${__FILEDIR__}/setup.bmp"
!define MUI_FINISHPAGE_RUN "$INSTDIR\Play against bots.exe"
!define MUI_FINISHPAGE_RUN_TEXT "Play against bots"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; Windows doesn't open a program that runs for writing, and neither replaces nor removes it.
!macro AwaitEndOf PROGRAM
  ${DoWhile} ${FileExists} "$INSTDIR\${PROGRAM}"
    ClearErrors
    FileOpen $0 "$INSTDIR\${PROGRAM}" a
    ${IfNot} ${Errors}
      FileClose $0
      ${Break}
    ${EndIf}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "Please close Kelvora and its server first." /SD IDCANCEL IDRETRY +2
    Abort
  ${Loop}
!macroend

!macro AwaitEndOfAll
  !insertmacro AwaitEndOf "kelvora.exe"
  !insertmacro AwaitEndOf "kelvora-server.exe"
  !insertmacro AwaitEndOf "Play against bots.exe"
!macroend

Section
  !insertmacro AwaitEndOfAll
  SetOutPath "$INSTDIR"
  File /r "${FILES}/*"
  WriteUninstaller "$INSTDIR\Uninstall.exe"
  CreateDirectory "${MENU}"
  CreateShortcut "${MENU}\Kelvora.lnk" "$INSTDIR\kelvora.exe"
  CreateShortcut "${MENU}\Play against bots.lnk" "$INSTDIR\Play against bots.exe"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayName" "Kelvora"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayIcon" "$INSTDIR\kelvora.exe"
  WriteRegStr HKCU "${UNINSTALL}" "Publisher" "The Kelvora developers"
  WriteRegStr HKCU "${UNINSTALL}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${UNINSTALL}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
  WriteRegDWORD HKCU "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL}" "NoRepair" 1
SectionEnd

; Removes what was installed and the player's settings, but nothing else that is in the folder.
Section "Uninstall"
  !insertmacro AwaitEndOfAll
  Delete "$INSTDIR\kelvora.exe"
  Delete "$INSTDIR\kelvora-server.exe"
  Delete "$INSTDIR\Play against bots.exe"
  Delete "$INSTDIR\kelvora.jpg"
  Delete "$INSTDIR\LICENSE.txt"
  Delete "$INSTDIR\assets\*.png"
  Delete "$INSTDIR\sounds\*.wav"
  Delete "$INSTDIR\sounds\*.mp3"
  Delete "$INSTDIR\Uninstall.exe"
  RMDir "$INSTDIR\assets"
  RMDir "$INSTDIR\sounds"
  RMDir "$INSTDIR"
  RMDir "$LOCALAPPDATA\Programs"  ; unless it has other programs
  Delete "${MENU}\Kelvora.lnk"
  Delete "${MENU}\Play against bots.lnk"
  RMDir "${MENU}"
  DeleteRegKey HKCU "${UNINSTALL}"
  DeleteRegKey HKCU "Software\kelvora"
SectionEnd
