#pragma once

#include <QtGlobal>

/// The units in which users see sizes, in bytes.
constexpr qint64 kilobyte = 1000;
constexpr qint64 megabyte = 1000 * kilobyte;
constexpr qint64 gigabyte = 1000 * megabyte;
