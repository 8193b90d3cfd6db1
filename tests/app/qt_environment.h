// Gives a GoogleTest program its QCoreApplication or QGuiApplication for as long as tests run;
// listing the tests, which needs no display, goes without. Once, in one source file:
//
//   const QtEnvironment<QCoreApplication>* const qt = QtEnvironment<QCoreApplication>::add();
#pragma once

#include <gtest/gtest.h>

#include <memory>

template <class Application>
class QtEnvironment : public testing::Environment {
public:
    static const QtEnvironment* add()
    {
        auto environment = std::make_unique<QtEnvironment>();
        testing::AddGlobalTestEnvironment(environment.get());
        return environment.release(); // GoogleTest owns it from now on
    }
    void SetUp() override { application_ = std::make_unique<Application>(count_, arguments_); }
    void TearDown() override { application_.reset(); }

private:
    char name_[5] = "test";
    char* arguments_[2] = {name_, nullptr};
    int count_ = 1;
    std::unique_ptr<Application> application_;
};
