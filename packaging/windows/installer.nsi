; The installer of the command line for one user: makensis -DVERSION=... -DFOLDER=... -DOUTPUT=...
; -DREMOVAL=..., a file with the commands that remove what is in FOLDER.
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
Name "Tambra packer ${VERSION}"
OutFile "${OUTPUT}"
; No administrator is needed.
RequestExecutionLevel user
InstallDir "$LOCALAPPDATA\Programs\Tambra packer"
InstallDirRegKey HKCU "Software\Tambra packer" "Folder"
ManifestSupportedOS Win10

!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tambra packer"

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

Section
  SetOutPath "$INSTDIR"
  File /r "${FOLDER}/*"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr HKCU "Software\Tambra packer" "Folder" "$INSTDIR"
  ; "tambra" in the Run box, and what asks there, finds the program.
  WriteRegStr HKCU "Software\Microsoft\Windows\CurrentVersion\App Paths\tambra.exe" "" "$INSTDIR\tambra.exe"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayName" "Tambra packer"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL}" "InstallLocation" "$INSTDIR"
  WriteRegDWORD HKCU "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL}" "NoRepair" 1
SectionEnd

Section "Uninstall"
  ; Only what was installed: the folder may hold files of the user's.
  !include "${REMOVAL}"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
  DeleteRegKey HKCU "Software\Microsoft\Windows\CurrentVersion\App Paths\tambra.exe"
  DeleteRegKey HKCU "Software\Tambra packer"
  DeleteRegKey HKCU "${UNINSTALL}"
SectionEnd
