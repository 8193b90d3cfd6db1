#error "this layer does not link libusb"
