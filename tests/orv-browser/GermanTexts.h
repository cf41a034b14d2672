#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QLocale>
#include <QTranslator>

namespace test {

/// A German user with the window's German texts, until the destructor.
class GermanTexts
{
public:
    GermanTexts()
    {
        QLocale::setDefault(QLocale("de_DE"));
        EXPECT_TRUE(mTranslator.load(QLocale("de_DE"), "orvbrowser", "_", ":/orvbrowser/translations"));
        QApplication::installTranslator(&mTranslator);
    }
    ~GermanTexts()
    {
        QApplication::removeTranslator(&mTranslator);
        QLocale::setDefault(mFormer);
    }
    GermanTexts(const GermanTexts&) = delete;
    GermanTexts& operator=(const GermanTexts&) = delete;

private:
    QLocale mFormer;
    QTranslator mTranslator;
};

} // namespace test
