#include "viewing/dicom/dicom_reader.h"

#include "viewing/dicom/stack_growth.h"

#include <dcmtk/dcmdata/dcistrmf.h>
#include <dcmtk/dcmjpls/djdecode.h>

#include <filesystem>
#include <system_error>

namespace viewing {

namespace {

/// The decoder that the toolkit keeps to itself, and silence from it: what is wrong is said once, in our words.
class Codecs {
public:
    Codecs() {
        OFLog::configure(OFLogger::OFF_LOG_LEVEL);
        DJLSDecoderRegistration::registerCodecs(EJLSUC_default, EJLSPC_colorByPixel);
    }
    Codecs(const Codecs&) = delete;
    Codecs& operator=(const Codecs&) = delete;
    ~Codecs() { DJLSDecoderRegistration::cleanup(); }
};

void prepareToolkit() { static const Codecs codecs; }

/// Ends when sequences lie within sequences so deeply that the toolkit, which calls itself for each of them, would use
/// up the stack.
class ShallowStream : public DcmInputFileStream {
public:
    explicit ShallowStream(const std::string& path) : DcmInputFileStream(OFFilename(path.c_str())) {}

    [[nodiscard]] bool isTooDeep() const { return tooDeep_; }

    /// The toolkit asks before it reads an item or a sequence.
    [[nodiscard]] OFCondition status() const override {
        constexpr std::uintptr_t room = std::uintptr_t{2} << 20U;
        tooDeep_ = tooDeep_ || stack_.bytes() > room;
        return tooDeep_ ? EC_CorruptedData : DcmInputFileStream::status();
    }
    [[nodiscard]] OFBool good() const override { return status().good(); }

private:
    StackGrowth stack_;
    mutable bool tooDeep_ = false;
};

OFCondition readFile(const std::string& path, DcmFileFormat& file) {
    ShallowStream stream(path);
    OFCondition read = stream.status();
    if (read.bad()) return read;
    file.transferInit();
    read = file.read(stream);
    file.transferEnd();
    if (stream.isTooDeep()) throw Refusal("holds sequences within sequences, too many to be read");
    // Names that cannot be converted stay as they are.
    if (read.good()) static_cast<void>(file.getDataset()->convertToUTF8());
    return read;
}

}  // namespace

std::unique_ptr<DcmFileFormat> readDicomFile(const std::string& path) {
    prepareToolkit();
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) throw Refusal("there is no such file");
    if (!std::filesystem::is_regular_file(status)) throw Refusal("is not a file");
    auto file = std::make_unique<DcmFileFormat>();
    const OFCondition loaded = readFile(path, *file);
    if (loaded == EC_InvalidStream || loaded == EC_StreamNotifyClient)
        throw Refusal("is truncated, or is not a DICOM file");
    if (loaded.bad()) throw Refusal("is not a DICOM file that can be read (" + std::string(loaded.text()) + ")");
    if (file->getDataset()->card() == 0) throw Refusal("is not a DICOM file");
    return file;
}

}  // namespace viewing
