// How every text attribute of a record is stored: a copy of the caller's NUL-terminated text,
// byte for byte.
#ifndef QZR_RECORDS_TEXTFIELD_H
#define QZR_RECORDS_TEXTFIELD_H

#include <string>

namespace qzr::records {

// A null text is stored as the empty text: the library never passes one, but a host that does
// must not make the record read through it. Storing a record's own text into itself (the host
// passing back what a getter returned) leaves it unchanged.
inline void StoreText(std::string* field, const char* text) {
    if (text == nullptr) {
        field->clear();
    } else if (text != field->c_str()) {
        field->assign(text);  // assign copes with a text that lies inside the field itself
    }
}

}  // namespace qzr::records

#endif  // QZR_RECORDS_TEXTFIELD_H
