/* An operator who types a text, and then ends the input. */
#ifndef TESTS_SHARED_TYPED_H
#define TESTS_SHARED_TYPED_H

#include <stdio.h>

#include <string>

/** Standard input gives the text while this lives. */
class Typed {
 public:
    explicit Typed(const std::string& text) : text_(text), input_(stdin) {
        stdin = fmemopen(&text_[0], text_.size(), "r");
    }
    ~Typed() {
        fclose(stdin);
        stdin = input_;
    }

 private:
    std::string text_;
    FILE* input_;
};

#endif
