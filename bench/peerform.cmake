# A form without what ties it to the program: cmake -DIN=page.ui -DOUT=peer.ui -P peerform.cmake
file(READ ${IN} form)
string(REGEX REPLACE "<connections>.*</connections>" "" form "${form}")
string(REGEX REPLACE "<slots>.*</slots>" "" form "${form}")
file(WRITE ${OUT} "${form}")
