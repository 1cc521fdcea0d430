#pragma once

#include <QString>
#include <QStringList>

// What one picture page of the first-run tutorial shows.
struct TutorialPageContent {
    QString imageName;
    QString titleFirstLine;
    QString titleSecondLine;
    QString subtitle;
    QString buttonTitle;
    int pageIndex = 0;
    int pageCount = 0;
    bool imageFirst = false;
    QStringList filterOptions;
    int selectedFilterIndex = 0;
};
