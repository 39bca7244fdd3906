#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

QString fromMacRoman(const char *text);

/// No value when a character isn't in Mac Roman.
std::optional<QByteArray> toMacRoman(const QString &characters);
