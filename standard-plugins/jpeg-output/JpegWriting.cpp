#include "standard-plugins/jpeg-output/JpegWriting.h"

namespace
{

JpegWriting* WritingOf(j_common_ptr codec)
{
    return static_cast<JpegWriting*>(codec->client_data);
}

JpegWriting* WritingOf(j_compress_ptr codec)
{
    return WritingOf(reinterpret_cast<j_common_ptr>(codec));
}

void OnError(j_common_ptr codec)
{
    const int code = codec->err->msg_code;
    const bool isMemory = code == JERR_OUT_OF_MEMORY || code == JERR_NO_BACKING_STORE;
    LeaveWriting(WritingOf(codec), isMemory ? WriteProblem::Memory : WriteProblem::Codec);
}

void OnMessage(j_common_ptr, int) {}

void SaySilence(j_common_ptr) {}

void Rewind(JpegWriting* writing)
{
    writing->destination.next_output_byte = writing->block;
    writing->destination.free_in_buffer = sizeof writing->block;
}

void Give(JpegWriting* writing, size_t count)
{
    if (!WriteOutput(&writing->output, writing->block, count))
        LeaveWriting(writing, writing->output.problem);
}

void OnStart(j_compress_ptr codec)
{
    Rewind(WritingOf(codec));
}

// The codec calls this when the block is full, whatever its count of free bytes says.
boolean OnEmpty(j_compress_ptr codec)
{
    JpegWriting* writing = WritingOf(codec);
    Give(writing, sizeof writing->block);
    Rewind(writing);
    return TRUE;
}

void OnEnd(j_compress_ptr codec)
{
    JpegWriting* writing = WritingOf(codec);
    Give(writing, sizeof writing->block - writing->destination.free_in_buffer);
}

} // namespace

void BindWriting(JpegWriting* writing)
{
    writing->codec.err = jpeg_std_error(&writing->errors);
    writing->codec.client_data = writing;
    writing->errors.error_exit = OnError;
    writing->errors.emit_message = OnMessage;
    writing->errors.output_message = SaySilence;
    writing->destination.init_destination = OnStart;
    writing->destination.empty_output_buffer = OnEmpty;
    writing->destination.term_destination = OnEnd;
}

void LeaveWriting(JpegWriting* writing, WriteProblem problem)
{
    writing->problem = problem;
    longjmp(writing->failure, 1);
}

void CloseWriting(JpegWriting* writing)
{
    jpeg_destroy_compress(&writing->codec);
    CloseOutput(&writing->output);
}
