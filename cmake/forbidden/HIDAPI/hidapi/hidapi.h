#error "this layer does not link hidapi"
