# SPDX-License-Identifier: MIT
# The icons: their folder, normal and hover colour, names.

# On dark panels: bars, timeline, tiles.
zorvane_colour(bar "rgb(190, 195, 203)")
zorvane_colour(barHover "rgb(98, 200, 255)")
zorvane_colour(accent "rgb(62, 183, 253)")
zorvane_colour(white "white")
zorvane_colour(tile "rgb(222, 225, 230)")
zorvane_colour(tileHover "white" ".halo { fill: rgba(255, 255, 255, 0.3) }")
zorvane_colour(tab "rgb(205, 211, 221)")
zorvane_colour(warning "rgb(255, 196, 84)")
# On light panels: roster, cards, dialogs.
zorvane_colour(panel "rgb(108, 118, 136)")
zorvane_colour(panelHover "rgb(20, 122, 226)")
zorvane_colour(card "rgb(134, 143, 157)")
zorvane_colour(preview "rgb(186, 193, 205)")
zorvane_colour(dialog "rgb(91, 102, 122)")
zorvane_colour(online "rgb(46, 160, 92)")
zorvane_colour(offline "rgb(134, 143, 157)")
zorvane_colour(alarm "rgb(204, 76, 76)")
# On the blue of the sign-in dialog.
zorvane_colour(login "rgb(222, 235, 248)")
zorvane_colour(alert "rgb(41, 44, 49)")
zorvane_colour(loginPanel "rgb(58, 124, 186)")
zorvane_colour(placeholder "rgb(78, 84, 95)")

zorvane_icons(mainwidget/icons bar white
    iconRecordsShow iconRecordsHide iconExport iconLive)
zorvane_icons(mainwidget/icons bar barHover
    iconExpand iconMaximize iconMinimize iconQuality iconRewind
    iconVolume0 iconVolume1 iconVolume2 iconVolumeMute
    playerPlay playerPause timelineZoomIn timelineZoomOut)
zorvane_icons(mainwidget/icons accent NONE iconRewind_active)
zorvane_icons(mainwidget/icons tile barHover playerBoxSnap playerBoxMore)
zorvane_icons(mainwidget/icons tile tileHover boxCloseCam)
zorvane_icons(mainwidget/icons tab white tabCamera tabLayouts tabSettings)
zorvane_icons(mainwidget/icons warning NONE tabNoService)
zorvane_icons(mainwidget/icons panel panelHover iconMore iconCollapse)
zorvane_icons(mainwidget/icons panelHover white dropdownCheck)
zorvane_icons(mainwidget/icons dialog panelHover rotate_left rotate_right)

zorvane_icons(roster/icons panel panelHover listExpand listCollapse)
zorvane_icons(roster/icons card panelHover rosterMore)
zorvane_icons(roster/icons alarm NONE rosterOfflineserver)
zorvane_icons(roster/icons online NONE rosterCardOn)
zorvane_icons(roster/icons offline NONE rosterCardOff)
zorvane_icons(roster/icons preview NONE rosterCardPreviewCam rosterCardPreviewNoCam)

zorvane_icons(calendar/icons bar barHover arrow_left arrow_right dropdown)

zorvane_icons(player/icons bar barHover edit_grid)
zorvane_icons(player/icons white NONE notification_ok notificationError)
zorvane_icons(player/icons placeholder NONE placeholder_logo)

zorvane_icons(login/icons alert NONE warn info)
zorvane_icons(login/icons white NONE
    logo radiobtn radiobtn_checked checkbox checkbox_checked)
zorvane_icons(login/icons login white settings tip)
zorvane_icons(login/icons loginPanel NONE arrow_line)

zorvane_icons(icons white NONE zorvane-client)
zorvane_icons(icons accent NONE selection-start selection-end timeline_footer)
