-- Lays out the window of the disk image: the artwork behind, the bundle on its calm side.
on run argv
    set imageName to item 1 of argv
    tell application "Finder"
        tell disk imageName
            open
            set current view of container window to icon view
            set toolbar visible of container window to false
            set statusbar visible of container window to false
            set the bounds of container window to {200, 160, 815, 596}
            set viewOptions to the icon view options of container window
            set arrangement of viewOptions to not arranged
            set icon size of viewOptions to 128
            set background picture of viewOptions to file ".background:background.png"
            set position of item "Lumetra Database Installer.app" of container window to {390, 190}
            update without registering applications
            close
        end tell
    end tell
end run
