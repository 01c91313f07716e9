#pragma once
// Declares all columns of a data table at once, types and names in the same order:
//     wctest::columns<int, QString>("unit", "text");

#include <QtTest>

namespace wctest {

template <typename... Types, typename... Names>
void columns(Names... names) {
    static_assert(sizeof...(Types) == sizeof...(Names), "one name per column type");
    (QTest::addColumn<Types>(names), ...);
}

}  // namespace wctest
