#ifndef ZEXIF_TESTS_CASE_NAME_H
#define ZEXIF_TESTS_CASE_NAME_H

#include <gtest/gtest.h>

#include <string>

// Names each test of a parameterised suite after its case's name.
struct CaseName {
    template <typename Case>
    std::string operator()(const ::testing::TestParamInfo<Case> &info) const
    {
        return info.param.name;
    }
};

#endif
