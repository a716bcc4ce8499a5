# What reads the same in every header, for the reference: all fields of a record, what Qt calls, and
# who owns a widget.
s|^( *)(auto fields\(\))|\1/// All fields in their order, as they are compared and printed.\n\1\2|
s|^( *)((void [a-z]+[A-Za-z]*Event\|bool event(Filter)?)\()|\1/// Called by Qt.\n\1\2|
s|^( *)(explicit [A-Za-z]+\(QWidget\* parent)|\1/// `parent` owns the widget; without one, whoever made it.\n\1\2|
