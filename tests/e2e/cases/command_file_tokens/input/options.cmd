"two words" a\"b plain/*gone*/joined x;comment
y # line comment
quoted" and "glued
-O2
