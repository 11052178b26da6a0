#pragma once

/** Number of a page, by which the menu asks for it and the window keeps it. */
enum TabIndex {
    menuTab = 0,
    versionTab = 1,
    temperatureTab = 2,
    displayTab = 3,
    powerTab = 4,
    heaterTab = 5,
    aboutTab = 6,
    ledTab = 7,
    buzzerTab = 8,
    canTab = 9,
    advancedTab = 10,
    digitalIOTab = 11,
    lightSensorTab = 12,
    touchTab = 13,
    onOffTab = 14,
    telematicsTab = 15,
    tabCount
};
