-- Lays out the window of the disk image: the artwork behind, the icons on the artwork's calm side. The Finder does it,
-- so somebody must be logged in. It saves the layout late, and holds the disk until it has.
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
            if exists folder "Lumetra" then
                set position of item "Lumetra Database Installer.app" of container window to {310, 190}
                set position of item "Lumetra" of container window to {500, 190}
            else
                set position of item "Lumetra Database Installer.app" of container window to {390, 190}
            end if
            update without registering applications
            delay 5
            close
            delay 5
        end tell
    end tell
end run
